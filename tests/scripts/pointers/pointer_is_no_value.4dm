// Required: a pointer variable alone yields no value.
$a:=1
$p:=->$a
$q:=$p  // error: -5 Undefined assignment variable type
