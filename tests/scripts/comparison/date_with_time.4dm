// A date does not compare with a time.
$x:=!2024-01-01!=?00:00:00?  // error: -25 Wrong type in comparison
