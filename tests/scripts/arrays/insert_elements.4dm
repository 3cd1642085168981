// INSERT IN ARRAY puts empty elements before a position.
ARRAY LONGINT($a;2)
$a{1}:=1
$a{2}:=2
INSERT IN ARRAY($a;2)
ALERT(String($a{1}*100+$a{2}*10+$a{3}))  // expect: 1002
ALERT(String(Size of array($a)))  // expect: 3
INSERT IN ARRAY($a;1;2)
ALERT(String(Size of array($a)))  // expect: 5
ALERT(String($a{3}))  // expect: 1
