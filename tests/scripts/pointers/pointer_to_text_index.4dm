// A dereferenced text has characters.
$s:="abc"
$p:=->$s
ALERT($p->[[2]])  // expect: b
