// Texts have no order.
$x:="abc">"a"  // error: -26 Comparison not possible!
