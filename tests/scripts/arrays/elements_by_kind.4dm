// Elements take and give values of their kind.
ARRAY TEXT($text;2)
ARRAY REAL($real;2)
ARRAY LONGINT($longint;2)
ARRAY BOOLEAN($boolean;2)
ARRAY DATE($date;2)
$text{1}:="one"
$text{2}:="two"
$real{2}:=2.5
$longint{2}:=7
$boolean{2}:=True
$date{2}:=!2024-02-29!
ALERT($text{2}+$text{1})  // expect: twoone
ALERT(String($real{2}*2))  // expect: 5
ALERT(String($longint{2}))  // expect: 7
ALERT(Choose($boolean{2};"true";"false"))  // expect: true
ALERT(Choose($boolean{1};"true";"false"))  // expect: false
ALERT(String(Day of($date{2})))  // expect: 29
