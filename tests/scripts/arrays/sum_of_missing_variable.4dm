// The sum of a missing variable is no value.
$x:=Sum($missing)  // error: -5 Undefined assignment variable type
