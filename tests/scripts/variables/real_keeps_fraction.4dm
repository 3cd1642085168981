// A variable made by a number is real.
$r:=3
$r:=$r/2
ALERT(String($r))  // expect: 1.5
