// A BLOB is copied by assignment.
C_BLOB($a)
SET BLOB SIZE($a;3)
$b:=$a
SET BLOB SIZE($a;7)
ALERT(String(BLOB size($b)))  // expect: 3
ALERT(String(BLOB size($a)))  // expect: 7
