// Required: of two forms that do not fit, the last one words the error.
$x:=Uppercase(5)  // error: -13 Command "Uppercase" wrong count of parameters
