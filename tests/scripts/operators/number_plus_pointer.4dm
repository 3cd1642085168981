// A pointer does not fold into a number.
$a:=1
$x:=5+->$a  // error: -10 Syntax error: Invalid type
