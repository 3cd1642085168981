// A pointer reads and writes its variable.
$x:=5
$p:=->$x
ALERT(String($p->))  // expect: 5
$p->:=7
ALERT(String($x))  // expect: 7
$p->:=$p->+1
ALERT(String($x))  // expect: 8
