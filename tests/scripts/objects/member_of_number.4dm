// A member of a number cannot be set.
$n:=5
$n.a:=1  // error: -58 Variable is no object!
