// The index of an element is an expression, truncated.
ARRAY LONGINT($a;3)
$i:=1
$a{$i+1}:=20
$a{$i+1+1}:=30
$a{1.9}:=10
ALERT(String($a{$i}))  // expect: 10
ALERT(String($a{$i+1}))  // expect: 20
ALERT(String($a{4-1}))  // expect: 30
ALERT(String($a{3.9}))  // expect: 30
