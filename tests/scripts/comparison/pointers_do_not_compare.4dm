// Pointers do not compare.
$a:=1
$x:=->$a=->$a  // error: -26 Comparison not possible!
