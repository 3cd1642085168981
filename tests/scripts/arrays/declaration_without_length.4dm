// An array declaration needs a length.
ARRAY LONGINT(va)  // error: -13 Command "ARRAY LONGINT" wrong count of parameters
