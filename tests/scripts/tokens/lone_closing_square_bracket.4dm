// A single closing square bracket is skipped.
$x:=5]
ALERT(String($x))  // expect: 5
ALERT(String(5]+2))  // expect: 7
