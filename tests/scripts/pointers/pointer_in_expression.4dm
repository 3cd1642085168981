// A dereference is an operand like a variable.
$a:=3
$p:=->$a
ALERT(String(2+$p->*10))  // expect: 50
ALERT(String($p->+$p->))  // expect: 6
