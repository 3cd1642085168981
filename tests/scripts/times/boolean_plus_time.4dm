// A time does not fold into a Boolean.
$t:=(1=1)+?00:01:00?  // error: -10 Syntax error: Invalid type
