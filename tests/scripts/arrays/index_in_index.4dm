// Required: the first closing brace ends an index, so an element inside an index needs brackets.
ARRAY LONGINT($a;3)
ARRAY LONGINT($b;3)
$a{1}:=10
$a{2}:=20
$b{1}:=2
ALERT(String($a{($b{1})}))  // expect: 20
ALERT(String($a{$b{1}}))  // expect: 10
