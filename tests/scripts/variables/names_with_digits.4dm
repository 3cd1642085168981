// A name may hold digits and low lines.
a1:=1
$2b:=2
_c3:=3
ALERT(String(a1+$2b+_c3))  // expect: 6
