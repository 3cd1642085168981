// A command with a high number is refused by name.
$x:=JSON Stringify("x")  // error: -13 Command "JSON Stringify" not supported
