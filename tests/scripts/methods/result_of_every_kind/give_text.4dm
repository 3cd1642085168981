// Gives back a text.
$0:=$1+"!"
