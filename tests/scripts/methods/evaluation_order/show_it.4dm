// Prints its parameter and gives it back.
ALERT($1)
$0:=$1
