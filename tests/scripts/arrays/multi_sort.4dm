// MULTI SORT ARRAY sorts by several arrays.
ARRAY LONGINT($a;3)
ARRAY LONGINT($b;3)
$a{1}:=2
$a{2}:=1
$a{3}:=2
$b{1}:=1
$b{2}:=5
$b{3}:=3
MULTI SORT ARRAY($a;>;$b;<)
ALERT(String($a{1}*100+($a{2}*10)+$a{3}))  // expect: 122
ALERT(String($b{1}*100+($b{2}*10)+$b{3}))  // expect: 531
