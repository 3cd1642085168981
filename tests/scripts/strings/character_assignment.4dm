// A character of a text cannot be assigned.
$s:="abc"
$s[[1]]:="x"  // error: -34 Array access error
