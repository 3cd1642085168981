// A variable that is no array has no elements to assign.
vx:=1
vx{2}:=3  // error: -36 Array access "vx" not possible. Index: 2 Array size: 0
