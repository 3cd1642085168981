// A pointer variable takes no number.
vx:=1
vp:=->vx
vp:=5  // error: -10 Variable "vp" has incorrect type!
