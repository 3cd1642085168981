// Two sides that give no value cannot be compared.
ARRAY LONGINT($a;1)
$x:=$a=$a  // error: -26 Comparison not possible!
