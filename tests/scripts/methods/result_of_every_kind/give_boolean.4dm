// Gives back a truth value.
$0:=$1>3
