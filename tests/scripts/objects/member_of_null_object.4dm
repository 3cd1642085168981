// A member of an object that was never made cannot be set.
C_OBJECT($o)
$o.a:=1  // error: -59 Object cannot be null
