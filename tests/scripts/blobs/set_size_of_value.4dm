// SET BLOB SIZE needs a variable.
SET BLOB SIZE(1;5)  // error: -13 Command "SET BLOB SIZE" wrong parameter type
