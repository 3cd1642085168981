// The sign of SORT ARRAY is less or greater.
ARRAY LONGINT(va;2)
SORT ARRAY(va;=)  // error: -13 Command "SORT ARRAY" wrong parameter type
