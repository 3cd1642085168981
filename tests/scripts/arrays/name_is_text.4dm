// The first parameter of an array declaration must be a variable.
ARRAY TEXT("va";3)  // error: -13 Command "ARRAY TEXT" wrong parameter type
