// Pointers to process and interprocess variables.
vx:="process"
<>vx:="interprocess"
$p:=->vx
ALERT($p->)  // expect: process
$p:=-><>vx
ALERT($p->)  // expect: interprocess
$p->:="changed"
ALERT(<>vx)  // expect: changed
ALERT(vx)  // expect: process
