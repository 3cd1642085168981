// Not needs its parameter.
$b:=Not()  // error: -13 Command "Not" wrong count of parameters
