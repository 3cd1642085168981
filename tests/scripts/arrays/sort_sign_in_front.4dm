// The sign of SORT ARRAY stands last.
ARRAY LONGINT(va;2)
SORT ARRAY(>;va)  // error: -13 Command "SORT ARRAY" wrong parameter type
