// Required: a nil pointer dereferences to a table, which is no value.
C_POINTER($p)
$x:=$p->  // error: -5 Undefined assignment variable type
