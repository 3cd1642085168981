// A longint variable wraps at 32 bits.
C_LONGINT($l)
$l:=2147483647
ALERT(String($l))  // expect: 2147483647
$l:=2147483648
ALERT(String($l))  // expect: -2147483648
$l:=2147483649
ALERT(String($l))  // expect: -2147483647
$l:=4294967295
ALERT(String($l))  // expect: -1
$l:=4294967296
ALERT(String($l))  // expect: 0
$l:=0xFFFFFFFF
ALERT(String($l))  // expect: -1
$l:=-2147483648
ALERT(String($l))  // expect: -2147483648
