// A whole array takes no value.
ARRAY LONGINT($a;3)
$a:=5  // error: -10 Variable "$a" has incorrect type!
