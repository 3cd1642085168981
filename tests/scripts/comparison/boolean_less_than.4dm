// Booleans have no order.
$x:=(1=2)<(1=1)  // error: -26 Comparison not possible!
