// New elements are empty values of the array's kind.
ARRAY TEXT($text;1)
ARRAY REAL($real;1)
ARRAY LONGINT($longint;1)
ARRAY BOOLEAN($boolean;1)
ARRAY DATE($date;1)
C_DATE($none)
ALERT(String(Length($text{1})))  // expect: 0
ALERT(String($real{1}))  // expect: 0
ALERT(String($longint{1}))  // expect: 0
ALERT(Choose($boolean{1};"true";"false"))  // expect: false
ALERT(Choose($date{1}=$none;"empty";"set"))  // expect: empty
