// Required: a collection that is a value cannot be handed to the host, and counts as a wrong type.
$c:=New collection
$x:=Choose(0;"a";$c)  // error: -13 Command "Choose" wrong parameter type
