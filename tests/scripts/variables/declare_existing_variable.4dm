// A declaration leaves an existing variable as it is.
$t:="text"
C_LONGINT($t)
ALERT($t)  // expect: text
C_INTEGER($t)
$t:="still a text"
ALERT($t)  // expect: still a text
$n:=1.5
C_LONGINT($n)
ALERT(String($n))  // expect: 1.5
