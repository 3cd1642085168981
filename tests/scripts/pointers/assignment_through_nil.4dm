// Required: a nil pointer dereferences to a table, which takes no value.
C_POINTER($p)
$p->:=5  // error: -4 No variable/field to assign
