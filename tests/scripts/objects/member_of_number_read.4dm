// A member of a number cannot be read.
$n:=5
$x:=$n.a  // error: -10 Syntax error: No Object Ref
