// Picture size takes a picture.
$x:=Picture size("a")  // error: -13 Command "Picture size" wrong parameter type
