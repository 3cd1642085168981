// Find in array may start at a position, which counts as 1 if it lies below.
ARRAY LONGINT($a;4)
$a{1}:=7
$a{3}:=7
ALERT(String(Find in array($a;7;1)))  // expect: 1
ALERT(String(Find in array($a;7;2)))  // expect: 3
ALERT(String(Find in array($a;7;4)))  // expect: -1
ALERT(String(Find in array($a;7;0)))  // expect: 1
ALERT(String(Find in array($a;7;-5)))  // expect: 1
ALERT(String(Find in array($a;7;99)))  // expect: -1
