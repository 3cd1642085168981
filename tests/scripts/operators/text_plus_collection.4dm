// A collection does not fold into a text.
$c:=New collection
$x:="a"+$c  // error: -10 Syntax error: Invalid type
