// A pointer variable takes other pointers.
$a:=1
$b:=2
$p:=->$a
$p:=->$b
ALERT(String($p->))  // expect: 2
