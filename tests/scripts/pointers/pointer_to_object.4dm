// A dereferenced object has members.
$o:=New object
$o.n:=1
$p:=->$o
ALERT(String($p->.n))  // expect: 1
$p->.n:=2
ALERT(String($o.n))  // expect: 2
