// SORT ARRAY takes variables only.
SORT ARRAY(5)  // error: -13 Command "SORT ARRAY" wrong parameter type
