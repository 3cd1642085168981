// Writes through the first parameter and tells what the own local of that name holds.
$1->:=99
ALERT(String($x))
