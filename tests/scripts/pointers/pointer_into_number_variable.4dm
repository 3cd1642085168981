// A variable of another kind takes no pointer.
vx:=1
vx:=->vx  // error: -10 Variable "vx" has incorrect type!
