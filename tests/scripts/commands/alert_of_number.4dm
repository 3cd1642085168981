// ALERT takes a text.
ALERT(5)  // error: -13 Command "ALERT" wrong parameter type
