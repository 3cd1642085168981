// Required: an object that is a value cannot be handed to the host, and counts as a wrong type.
$o:=New object
$x:=Choose(0;"a";$o)  // error: -13 Command "Choose" wrong parameter type
