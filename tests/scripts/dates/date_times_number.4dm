// A date is not multiplied.
$x:=!2024-01-01!*2  // error: -32 Formula not supported!
