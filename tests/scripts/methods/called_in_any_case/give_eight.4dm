// Gives back 8.
$0:=8
