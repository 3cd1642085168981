// Random takes no parameters.
$x:=Random(5)  // error: -13 Command "Random" wrong count of parameters
