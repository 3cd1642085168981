// A number is not divided by a text.
$x:=5/"a"  // error: -32 Formula not supported!
