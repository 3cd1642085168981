// The last line counts like any other.
ALERT("a")  // expect: a
$x:="a"+1  // error: -32 Formula not supported!
