// An element takes values of its kind only.
ARRAY LONGINT(va;3)
va{1}:="a"  // error: -10 Variable "va" has incorrect type!
