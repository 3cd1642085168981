// Required: brackets behind a variable are one more operand.
$a:=2
ALERT(String($a(3)))  // expect: 5
ALERT(String(10-$a(3)))  // expect: 5
