// Dots without a name are dropped.
$x:="a"..
ALERT($x)  // expect: a
$x:="b" .
ALERT($x)  // expect: b
