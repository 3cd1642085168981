// The target of a pointer may come to exist through it.
$p:=->vnew
$p->:=5
ALERT(String(vnew))  // expect: 5
