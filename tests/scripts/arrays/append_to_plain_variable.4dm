// A plain variable has a value, and APPEND TO ARRAY needs a variable.
vx:=1
APPEND TO ARRAY(vx;1)  // error: -13 Command "APPEND TO ARRAY" wrong parameter type
