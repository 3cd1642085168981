// SORT ARRAY sorts upward, or downward with the sign.
ARRAY LONGINT($a;3)
$a{1}:=3
$a{2}:=1
$a{3}:=2
SORT ARRAY($a)
ALERT(String($a{1}*100+($a{2}*10)+$a{3}))  // expect: 123
SORT ARRAY($a;<)
ALERT(String($a{1}*100+($a{2}*10)+$a{3}))  // expect: 321
SORT ARRAY($a;>)
ALERT(String($a{1}*100+($a{2}*10)+$a{3}))  // expect: 123
