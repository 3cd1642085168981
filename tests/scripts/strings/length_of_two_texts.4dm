// Length takes one parameter.
$x:=Length("a";"b")  // error: -13 Command "Length" wrong count of parameters
