// A BLOB does not fold into a number.
C_BLOB($b)
$x:=1+$b  // error: -10 Syntax error: Invalid type
