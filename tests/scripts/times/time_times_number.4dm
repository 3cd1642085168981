// A time is not multiplied by a number.
$t:=?00:01:00?*2  // error: -10 Syntax error: Invalid type
