// A text is not taken from a number.
$x:=5-"a"  // error: -32 Formula not supported!
