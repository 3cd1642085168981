// A dereferenced array has elements and serves commands.
ARRAY TEXT($a;2)
$p:=->$a
$p->{2}:="two"
ALERT($a{2})  // expect: two
ALERT($p->{2})  // expect: two
APPEND TO ARRAY($p->;"three")
ALERT(String(Size of array($p->)))  // expect: 3
