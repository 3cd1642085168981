// Find in array takes the value as pattern.
ARRAY TEXT($a;3)
$a{1}:="apple"
$a{2}:="banana"
$a{3}:="b@"
ALERT(String(Find in array($a;"b@")))  // expect: 2
ALERT(String(Find in array($a;"@le")))  // expect: 1
