// A picture does not fold into a number.
C_PICTURE($p)
$x:=1+$p  // error: -10 Syntax error: Invalid type
