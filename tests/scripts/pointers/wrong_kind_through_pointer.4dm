// A value of another kind is refused by the target.
vx:=1
$p:=->vx
$p->:="a"  // error: -10 Variable "vx" has incorrect type!
