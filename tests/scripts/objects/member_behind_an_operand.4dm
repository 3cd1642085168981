// Required: an object does not follow an operand of another kind, so a member needs brackets there.
$o:=New object
$o.a:=3
$x:=1+$o.a  // error: -10 Syntax error: Invalid type
