// Texts have no order.
$x:="a"<="a"  // error: -26 Comparison not possible!
