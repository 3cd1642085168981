// A number does not fold into a collection.
$c:=New collection
$x:=$c+1  // error: -10 Syntax error: Invalid type
