// The parameters of a command are evaluated before it refuses them.
$x:=Length(log_and_give(5))  // error: -13 Command "Length" wrong parameter type
// expect: logged
