// SORT ARRAY carries further arrays along.
ARRAY TEXT($name;3)
ARRAY LONGINT($number;3)
$name{1}:="cherry"
$name{2}:="apple"
$name{3}:="banana"
$number{1}:=3
$number{2}:=1
$number{3}:=2
SORT ARRAY($name;$number;>)
ALERT($name{1}+" "+$name{2}+" "+$name{3})  // expect: apple banana cherry
ALERT(String($number{1}*100+($number{2}*10)+$number{3}))  // expect: 123
SORT ARRAY($number;$name;<)
ALERT($name{1}+" "+$name{2}+" "+$name{3})  // expect: cherry banana apple
