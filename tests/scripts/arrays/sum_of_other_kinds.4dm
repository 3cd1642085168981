// The sum of anything but a numeric array is 0.
ARRAY TEXT($t;2)
$t{1}:="5"
$x:=7
ALERT(String(Sum($t)))  // expect: 0
ALERT(String(Sum($x)))  // expect: 0
