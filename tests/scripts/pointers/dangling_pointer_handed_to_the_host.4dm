// A pointer to a variable that does not exist cannot be handed to the host either.
$x:=Choose(0;"a";->vgone)  // error: -14 Unknown Pointer "vgone"
