// The position of INSERT IN ARRAY must be a number.
ARRAY LONGINT(va;2)
INSERT IN ARRAY(va;"a";1)  // error: -13 Command "INSERT IN ARRAY" wrong parameter type
