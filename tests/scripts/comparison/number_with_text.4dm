// A number does not compare with a text.
$x:=1="1"  // error: -25 Wrong type in comparison
