// A hexadecimal literal of nine digits is no value.
$x:=0xFFFFFFFFF  // error: -5 Undefined assignment variable type
