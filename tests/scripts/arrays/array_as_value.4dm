// An array is no value of an expression.
ARRAY LONGINT($a;3)
ALERT(String(5+$a))  // expect: 5
$x:=$a  // error: -5 Undefined assignment variable type
