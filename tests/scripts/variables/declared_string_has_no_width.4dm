// A declared string is a text of any length.
C_STRING(3;$s)
$s:="longer than three"
ALERT($s)  // expect: longer than three
