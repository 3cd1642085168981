// The error shows a local with its prefix.
$x:="a"
$x:=1  // error: -10 Variable "$x" has incorrect type!
