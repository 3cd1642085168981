// There is no element 0 to read.
ARRAY LONGINT(va;3)
$x:=va{0}  // error: -36 Array access "va" not possible. Index: 0 Array size: 3
