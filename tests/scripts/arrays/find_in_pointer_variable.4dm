// Find in array on a pointer is no array.
vx:=1
vp:=->vx
$x:=Find in array(vp;1)  // error: -40 Variable "vp" is not an array!
