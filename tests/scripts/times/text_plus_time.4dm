// A time does not join a text.
$t:="a"+?00:01:00?  // error: -10 Syntax error: Invalid type
