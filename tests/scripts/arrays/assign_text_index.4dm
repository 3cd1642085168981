// The index of an element to assign must be a number.
ARRAY LONGINT(va;3)
va{"1"}:=1  // error: -35 Array index must be a number
