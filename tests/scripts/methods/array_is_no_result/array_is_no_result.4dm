// An array is no result.
$x:=gives_array(1)  // error: -5 Undefined assignment variable type
