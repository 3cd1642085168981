// An object does not fold into a text.
$o:=New object
$x:="a"+$o  // error: -10 Syntax error: Invalid type
