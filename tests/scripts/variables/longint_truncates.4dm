// A longint variable truncates toward zero.
C_LONGINT($l)
$l:=1.9
ALERT(String($l))  // expect: 1
$l:=-1.9
ALERT(String($l))  // expect: -1
