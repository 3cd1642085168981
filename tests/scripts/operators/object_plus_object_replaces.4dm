// Of two objects in a row the last one is the value.
$o:=New object
$o.n:=1
$p:=New object
$p.n:=2
$q:=$o+$p
ALERT(String($q.n))  // expect: 2
