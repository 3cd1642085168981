// There is no element before the start to read.
ARRAY REAL(va;3)
$x:=va{-1}  // error: -36 Array access "va" not possible. Index: -1 Array size: 3
