// Prints and gives back its parameter.
ALERT("logged")
$0:=$1
