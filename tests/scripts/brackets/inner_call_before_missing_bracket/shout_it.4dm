// Prints its parameter.
ALERT($1)
$0:=1
