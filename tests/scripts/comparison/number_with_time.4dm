// A number does not compare with a time.
$x:=60=?00:01:00?  // error: -25 Wrong type in comparison
