// Sum adds the elements of a numeric array.
ARRAY LONGINT($l;3)
ARRAY REAL($r;2)
ARRAY INTEGER($i;2)
$l{1}:=1
$l{2}:=2
$l{3}:=3
$r{1}:=0.5
$r{2}:=0.25
$i{2}:=-4
ALERT(String(Sum($l)))  // expect: 6
ALERT(String(Sum($r)))  // expect: 0.75
ALERT(String(Sum($i)))  // expect: -4
