// An object does not fold into a number.
$o:=New object
$x:=1+$o  // error: -10 Syntax error: Invalid type
