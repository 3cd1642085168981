// Insert string, Delete string and Change string work on a copy.
$s:="abcdef"
ALERT(Insert string($s;"XY";3))  // expect: abXYcdef
ALERT(Delete string($s;2;3))  // expect: aef
ALERT(Change string($s;"XY";3))  // expect: abXYef
ALERT($s)  // expect: abcdef
