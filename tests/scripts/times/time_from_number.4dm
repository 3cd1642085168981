// Time takes a text only.
$t:=Time(5)  // error: -13 Command "Time" wrong parameter type
