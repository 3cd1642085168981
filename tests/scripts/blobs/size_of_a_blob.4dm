// A declared BLOB is empty and can be resized.
C_BLOB($b)
ALERT(String(BLOB size($b)))  // expect: 0
SET BLOB SIZE($b;10)
ALERT(String(BLOB size($b)))  // expect: 10
SET BLOB SIZE($b;4.9)
ALERT(String(BLOB size($b)))  // expect: 4
SET BLOB SIZE($b;0)
ALERT(String(BLOB size($b)))  // expect: 0
