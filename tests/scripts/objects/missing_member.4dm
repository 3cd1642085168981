// A member that does not exist is no value.
$o:=New object
$x:=$o.nothing  // error: -5 Undefined assignment variable type
