// Required: member functions are called on objects only.
$c:=New collection
$n:=$c.indexOf(1)  // error: -10 Syntax error: No Object Ref
