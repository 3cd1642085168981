// Brackets around the target of an assignment take its value first.
$a:=2
($a):=3  // error: -4 No variable/field to assign
