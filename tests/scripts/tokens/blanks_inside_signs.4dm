// Required: blanks inside a sign of two characters part it.
$a:=5
$x:=$a< =5  // error: -1 Comparison with more than two values is not allowed
