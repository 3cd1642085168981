// Division of a time by no time is an error.
$t:=?00:00:10?/?00:00:00?  // error: -2 Division by zero
