// A member function needs an object.
$n:=5
$x:=$n.something(1)  // error: -10 Syntax error: No Object Ref
