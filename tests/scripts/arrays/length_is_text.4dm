// The length of an array must be a number.
ARRAY TEXT(va;"a")  // error: -13 Command "ARRAY TEXT" wrong parameter type
