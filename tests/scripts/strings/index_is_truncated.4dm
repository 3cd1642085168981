// The index of a character is truncated.
$s:="hello"
ALERT($s[[1.9]])  // expect: h
ALERT($s[[2.1]])  // expect: e
