// There is no element behind the end to assign.
ARRAY LONGINT(va;3)
va{4}:=1  // error: -36 Array access "va" not possible. Index: 4 Array size: 3
