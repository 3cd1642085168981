// Parameters are copies.
$x:=5
$s:="abc"
change_own($x;$s)
ALERT(String($x))  // expect: 5
ALERT($s)  // expect: abc
