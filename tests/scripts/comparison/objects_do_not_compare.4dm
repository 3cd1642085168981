// Objects do not compare, not even with themselves.
$o:=New object
$x:=$o=$o  // error: -26 Comparison not possible!
