// A number does not add to a time.
$t:=?00:01:00?+30  // error: -10 Syntax error: Invalid type
