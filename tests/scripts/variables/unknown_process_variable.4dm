// A variable must exist when it is read.
$x:=unknown  // error: -14 Unknown Variable "unknown"
