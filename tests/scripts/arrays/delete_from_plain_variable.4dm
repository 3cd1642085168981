// DELETE FROM ARRAY needs an array.
vx:=1
DELETE FROM ARRAY(vx;1)  // error: -40 Variable is not an array "vx"
