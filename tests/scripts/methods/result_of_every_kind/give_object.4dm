// Gives back an object.
$0:=New object
$0.name:=$1
