// Gives back 7.
$0:=7
