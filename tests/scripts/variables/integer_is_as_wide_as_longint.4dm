// An integer variable is stored like a longint one.
C_INTEGER($i)
$i:=100000
ALERT(String($i))  // expect: 100000
$i:=3000000000
ALERT(String($i))  // expect: -1294967296
