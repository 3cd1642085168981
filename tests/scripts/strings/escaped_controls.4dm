// Backslash t, r and n are tab, carriage return and line feed.
$s:="\t\r\n"
ALERT(String(Length($s)))  // expect: 3
ALERT(String(Character code($s[[1]])))  // expect: 9
ALERT(String(Character code($s[[2]])))  // expect: 13
ALERT(String(Character code($s[[3]])))  // expect: 10
