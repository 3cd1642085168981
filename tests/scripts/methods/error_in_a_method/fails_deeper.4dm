// Fails.
ALERT("deeper")
$x:=$1/0  // error: -2 Division by zero
ALERT("never")
