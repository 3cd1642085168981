// A member that is an object is shared as well.
$o:=New object
$o.child:=New object
$c:=$o.child
$c.n:=5
ALERT(String($o.child.n))  // expect: 5
