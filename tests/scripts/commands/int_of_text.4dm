// Int takes a number only.
$x:=Int("a")  // error: -13 Command "Int" wrong parameter type
