// A time does not add to a number.
$t:=30+?00:01:00?  // error: -10 Syntax error: Invalid type
