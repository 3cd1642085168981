// Empty lines and comment lines are lines.

// a comment

ALERT("a")  // expect: a

$x:=7/0  // error: -2 Division by zero
