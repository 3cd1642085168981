// A number does not fold into an object.
$o:=New object
$x:=$o+1  // error: -10 Syntax error: Invalid type
