// A number is not taken from a text.
$x:="a"-1  // error: -32 Formula not supported!
