// An assignment needs a value.
$x:=  // error: -5 Undefined assignment variable type
