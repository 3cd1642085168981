// A command that the interpreter does not know is refused by name.
$x:=Current process  // error: -13 Command "Current process" not supported
