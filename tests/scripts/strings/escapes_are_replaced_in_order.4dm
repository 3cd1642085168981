// Required: escapes are replaced one after the other, so an escaped backslash before r is a backslash and a return.
$s:="\\r"
ALERT(String(Length($s)))  // expect: 2
ALERT(String(Character code($s[[1]])))  // expect: 92
ALERT(String(Character code($s[[2]])))  // expect: 13
