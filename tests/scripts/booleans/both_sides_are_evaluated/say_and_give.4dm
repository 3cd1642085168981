// Prints the first parameter and gives back the second.
ALERT($1)
$0:=$2
