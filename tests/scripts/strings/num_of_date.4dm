// Num takes a text or a Boolean only.
$x:=Num(!2024-01-01!)  // error: -13 Command "Num" wrong parameter type
