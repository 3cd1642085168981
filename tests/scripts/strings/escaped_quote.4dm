// A backslash and a quote in a text are a quote.
$s:="a\"b"
ALERT($s)  // expect: a"b
ALERT(String(Length($s)))  // expect: 3
ALERT(String(Character code($s[[2]])))  // expect: 34
