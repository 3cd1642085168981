// A negative size does nothing.
C_BLOB($b)
SET BLOB SIZE($b;10)
SET BLOB SIZE($b;-1)
ALERT(String(BLOB size($b)))  // expect: 10
