// A text does not add to a number.
$x:=1+"a"  // error: -32 Formula not supported!
