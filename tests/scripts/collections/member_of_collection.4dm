// Required: members belong to objects only.
$c:=New collection
$n:=$c.length  // error: -10 Syntax error: No Object Ref
