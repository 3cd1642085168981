// A pair of backslashes is one backslash.
$s:="a\\b"
ALERT($s)  // expect: a\b
ALERT(String(Length($s)))  // expect: 3
