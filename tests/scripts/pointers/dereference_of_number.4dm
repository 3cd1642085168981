// A dereference needs a pointer.
vp:=5
$x:=vp->  // error: -12 The Variable "vp" is no pointer!
