// A member of a member that is no object cannot be read.
$o:=New object
$o.a:=1
$x:=$o.a.b  // error: -10 Syntax error: No Object Ref
