// String needs a parameter.
$x:=String()  // error: -13 Command "String" wrong count of parameters
