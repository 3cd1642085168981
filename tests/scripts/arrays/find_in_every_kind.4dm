// Find in array gives the position of a value, or -1.
ARRAY LONGINT($l;3)
ARRAY REAL($r;3)
ARRAY TEXT($t;3)
ARRAY BOOLEAN($b;3)
ARRAY DATE($d;3)
$l{2}:=7
$r{3}:=1.5
$t{2}:="two"
$b{3}:=True
$d{2}:=!2024-02-29!
ALERT(String(Find in array($l;7)))  // expect: 2
ALERT(String(Find in array($l;8)))  // expect: -1
ALERT(String(Find in array($r;1.5)))  // expect: 3
ALERT(String(Find in array($t;"TWO")))  // expect: 2
ALERT(String(Find in array($t;"three")))  // expect: -1
ALERT(String(Find in array($b;True)))  // expect: 3
ALERT(String(Find in array($d;!2024-02-29!)))  // expect: 2
