// Of two BLOBs in a row the last one is the value.
C_BLOB($a;$b)
SET BLOB SIZE($a;3)
SET BLOB SIZE($b;5)
ALERT(String(BLOB size($a+$b)))  // expect: 5
