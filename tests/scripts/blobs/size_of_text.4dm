// BLOB size takes a BLOB.
$x:=BLOB size("a")  // error: -13 Command "BLOB size" wrong parameter type
