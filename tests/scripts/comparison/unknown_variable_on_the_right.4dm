// Required: an error on the right side is not tested before the kinds are.
$x:=1=$missing  // error: -25 Unknown Variable "$missing"Wrong type in comparison
