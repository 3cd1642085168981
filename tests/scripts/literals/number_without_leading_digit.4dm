// Required: a separator at the start of a number is read as a member.
$x:=.5  // error: -10 Syntax error: No Object Ref
