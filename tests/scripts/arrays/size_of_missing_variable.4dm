// Size of array needs a variable that exists.
$x:=Size of array(vx)  // error: -14 Unknown Variable "vx"
