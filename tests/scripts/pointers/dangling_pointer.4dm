// The target of a pointer must exist when it is read.
$p:=->vgone
$x:=$p->  // error: -14 Unknown Variable "vgone"
