// Elements take part in arithmetic.
ARRAY LONGINT($a;2)
$a{1}:=2
$a{2}:=3
ALERT(String($a{1}+$a{2}*10))  // expect: 50
$a{1}:=$a{1}+$a{2}
ALERT(String($a{1}))  // expect: 5
