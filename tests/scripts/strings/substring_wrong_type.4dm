// Substring with two parameters of which one does not fit has a wrong type.
$x:=Substring("a";"b")  // error: -13 Command "Substring" wrong parameter type
