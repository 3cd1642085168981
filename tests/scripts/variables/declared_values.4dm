// Declared variables start empty.
C_LONGINT($l)
C_INTEGER($i)
C_REAL($r)
C_TEXT($t)
C_STRING(20;$s)
C_BOOLEAN($b)
ALERT(String($l))  // expect: 0
ALERT(String($i))  // expect: 0
ALERT(String($r))  // expect: 0
ALERT(String(Length($t)))  // expect: 0
ALERT(String(Length($s)))  // expect: 0
ALERT(Choose($b;"true";"false"))  // expect: false
