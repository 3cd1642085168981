// Required: a negative index reaches the array itself, which takes no value.
ARRAY LONGINT(va;3)
va{-2}:=1  // error: -10 Variable "va" has incorrect type!
