// Gives back a date.
$0:=!2024-02-28!+$1
