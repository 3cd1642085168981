// Required: only the first assignment of a line is made, and a second sign of assignment is passed over.
$b:=2
$a:=$b:=3
ALERT(String($a))  // expect: 5
ALERT(String($b))  // expect: 2
