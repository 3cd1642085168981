// Required: Substring with three parameters of which one does not fit fails last for its count.
$x:=Substring("a";"b";1)  // error: -13 Command "Substring" wrong count of parameters
