// A text does not compare with a number.
$x:="1"=1  // error: -25 Wrong type in comparison
