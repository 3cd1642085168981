// A backslash before another character stays.
$s:="a\qb"
ALERT($s)  // expect: a\qb
