// Sets its result to a number and then to a text.
$0:=1
$0:="a"  // error: -10 Variable "$0" has incorrect type!
