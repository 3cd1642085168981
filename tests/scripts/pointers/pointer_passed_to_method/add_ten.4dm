// Adds 10 to the variable that the first parameter points to.
$1->:=$1->+10
