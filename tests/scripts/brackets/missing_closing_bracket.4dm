// An opening bracket needs a closing one.
$x:=(1  // error: -41 Closed Bracket expected
