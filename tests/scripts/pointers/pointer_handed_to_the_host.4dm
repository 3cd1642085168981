// A pointer to a variable of the interpreter cannot be handed to the host.
vx:=1
$x:=Choose(0;"a";->vx)  // error: -14 Pointer to variables not supported: "vx"
