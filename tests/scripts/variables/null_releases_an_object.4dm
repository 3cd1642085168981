// Null empties an object variable.
$o:=New object
$o:=Null
$x:=$o.a  // error: -10 Syntax error: No Object Ref
