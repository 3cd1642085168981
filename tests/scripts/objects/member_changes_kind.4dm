// A member takes values of any kind, one after the other.
$o:=New object
$o.x:=5
$o.x:="text"
ALERT($o.x)  // expect: text
$o.x:=7
ALERT(String($o.x))  // expect: 7
