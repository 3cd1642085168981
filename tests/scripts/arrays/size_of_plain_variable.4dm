// Size of array needs an array.
vx:=1
$x:=Size of array(vx)  // error: -40 Variable "vx" is not an array!
