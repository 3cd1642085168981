// Braces in the wrong order are no array access.
ARRAY LONGINT($a;3)
$a}1{:=1  // error: -34 Array access error
