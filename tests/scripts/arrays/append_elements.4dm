// APPEND TO ARRAY adds an element of a fitting kind.
ARRAY LONGINT($l;0)
ARRAY TEXT($t;1)
ARRAY BOOLEAN($b;0)
ARRAY DATE($d;0)
APPEND TO ARRAY($l;5)
APPEND TO ARRAY($l;$l{1}+1)
APPEND TO ARRAY($t;"x")
APPEND TO ARRAY($b;1=1)
APPEND TO ARRAY($d;!2024-02-29!)
ALERT(String(Size of array($l)))  // expect: 2
ALERT(String($l{2}))  // expect: 6
ALERT($t{2})  // expect: x
ALERT(Choose($b{1};"true";"false"))  // expect: true
ALERT(String(Day of($d{1})))  // expect: 29
