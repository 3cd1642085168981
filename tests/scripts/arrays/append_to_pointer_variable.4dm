// APPEND TO ARRAY on a pointer is no array.
vx:=1
vp:=->vx
APPEND TO ARRAY(vp;1)  // error: -40 Variable "vp" is not an array!
