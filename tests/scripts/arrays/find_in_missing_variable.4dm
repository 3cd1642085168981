// Find in array needs a variable that exists.
$x:=Find in array(vx;1)  // error: -14 Unknown Variable "vx"
