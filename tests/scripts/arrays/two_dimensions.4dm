// There are no arrays of two dimensions.
ARRAY LONGINT(va;2;3)  // error: -13 Command "ARRAY LONGINT" wrong count of parameters
