// Choose needs at least one value.
$x:=Choose(1)  // error: -13 Command "Choose" wrong count of parameters
