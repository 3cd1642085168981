// New object takes no parameters.
$o:=New object("a";1)  // error: -13 Command "New object" wrong count of parameters
