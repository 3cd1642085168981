// A command of a range that has no handler is refused by name.
$x:=Test path name("x")  // error: -13 Command "Test path name" not supported
