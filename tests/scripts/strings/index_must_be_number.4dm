// The index of a character must be a number.
$s:="abc"
$x:=$s[["a"]]  // error: -35 String index must be a number
