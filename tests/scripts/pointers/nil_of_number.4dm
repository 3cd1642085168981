// Is nil pointer needs a pointer.
vx:=1
$b:=Is nil pointer(vx)  // error: -14 Variable "vx" is not a pointer
