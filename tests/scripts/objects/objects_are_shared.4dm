// An object is shared by the variables that hold it.
$a:=New object
$a.n:=1
$b:=$a
$b.n:=2
ALERT(String($a.n))  // expect: 2
$b:=New object
$b.n:=3
ALERT(String($a.n))  // expect: 2
