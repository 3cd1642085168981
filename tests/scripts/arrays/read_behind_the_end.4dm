// There is no element behind the end to read.
ARRAY TEXT(va;3)
$x:=va{4}  // error: -36 Array access "va" not possible. Index: 4 Array size: 3
