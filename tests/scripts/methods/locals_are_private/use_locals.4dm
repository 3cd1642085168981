// Uses locals of its own.
$x:=2
$hidden:=3
