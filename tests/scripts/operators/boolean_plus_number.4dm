// A number does not fold into a Boolean.
$t:=(1=1)
$x:=$t+1  // error: -10 Syntax error: Invalid type
