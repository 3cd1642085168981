// There is no conversion from number to time.
$t:=?00:00:05?
$t:=5  // error: -10 Variable "$t" has incorrect type!
