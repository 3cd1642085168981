// Real and longint variables compare by value.
C_LONGINT($l)
C_REAL($r)
$l:=3
$r:=3
ALERT(Choose($l=$r;"yes";"no"))  // expect: yes
$r:=3.5
ALERT(Choose($l<$r;"yes";"no"))  // expect: yes
