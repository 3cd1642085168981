// Mod takes two numbers.
$x:=Mod(7;"a")  // error: -13 Command "Mod" wrong parameter type
