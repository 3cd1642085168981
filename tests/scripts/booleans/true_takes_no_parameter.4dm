// True has no parameters.
$b:=True(1)  // error: -13 Command "True" wrong count of parameters
