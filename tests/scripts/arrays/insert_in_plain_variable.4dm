// INSERT IN ARRAY needs an array.
vx:=1
INSERT IN ARRAY(vx;1)  // error: -40 Variable is not an array "vx"
