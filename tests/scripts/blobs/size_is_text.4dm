// The size of a BLOB is a number.
C_BLOB(vb)
SET BLOB SIZE(vb;"a")  // error: -13 Command "SET BLOB SIZE" wrong parameter type
