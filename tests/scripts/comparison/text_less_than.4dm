// Texts have no order.
$x:="abc"<"abd"  // error: -26 Comparison not possible!
