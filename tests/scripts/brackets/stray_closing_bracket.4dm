// A closing bracket without an opening one is ignored.
$x:=1)
ALERT(String($x))  // expect: 1
$x:=1)+2
ALERT(String($x))  // expect: 3
