// The index of an element to read must be a number.
ARRAY REAL(va;3)
$x:=va{"1"}  // error: -35 Array index must be a number
