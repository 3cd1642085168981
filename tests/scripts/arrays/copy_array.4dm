// COPY ARRAY makes a copy that stands for itself.
ARRAY LONGINT($a;2)
$a{1}:=1
$a{2}:=2
COPY ARRAY($a;$b)
$a{1}:=9
ALERT(String(Size of array($b)))  // expect: 2
ALERT(String($b{1}))  // expect: 1
ALERT(String($b{2}))  // expect: 2
