// Two comparisons in one block are an error.
$a:=1
$b:=2
$x:=$a=1 & $b=2  // error: -1 Comparison with more than two values is not allowed
