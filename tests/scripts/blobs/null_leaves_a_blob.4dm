// Required: Null leaves the bytes of a BLOB in place.
C_BLOB($b)
SET BLOB SIZE($b;10)
$b:=Null
ALERT(String(BLOB size($b)))  // expect: 10
