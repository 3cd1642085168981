// A number does not join a text.
$x:="a"+1  // error: -32 Formula not supported!
