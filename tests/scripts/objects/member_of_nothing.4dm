// A member needs a value to its left.
$x:=.a  // error: -10 Syntax error: No Object Ref
