// A member of an object that was never made cannot be read.
C_OBJECT($o)
$x:=$o.a  // error: -10 Syntax error: No Object Ref
