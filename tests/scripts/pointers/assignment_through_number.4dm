// An assignment through a variable needs a pointer.
vp:="a"
vp->:=5  // error: -12 The Variable "vp" is no pointer!
