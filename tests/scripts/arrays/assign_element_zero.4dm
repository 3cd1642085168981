// Required: the index 0 reaches the array itself, which takes no value.
ARRAY LONGINT(va;3)
va{0}:=1  // error: -10 Variable "va" has incorrect type!
