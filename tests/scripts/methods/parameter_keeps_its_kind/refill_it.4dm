// Assigns a number to its text parameter.
$1:=5  // error: -10 Variable "$1" has incorrect type!
