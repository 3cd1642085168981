// Required: on the left side as well the first closing brace ends the index.
ARRAY LONGINT($a;3)
ARRAY LONGINT($b;3)
$b{1}:=2
$a{$b{1}}:=7
ALERT(String($a{1}))  // expect: 7
ALERT(String($a{2}))  // expect: 0
