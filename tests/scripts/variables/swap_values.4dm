// Values are copied by assignment.
$a:=1
$b:=2
$c:=$a
$a:=$b
$b:=$c
ALERT(String($a)+String($b))  // expect: 21
