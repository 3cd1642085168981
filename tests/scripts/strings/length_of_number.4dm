// Length takes a text only.
$x:=Length(5)  // error: -13 Command "Length" wrong parameter type
