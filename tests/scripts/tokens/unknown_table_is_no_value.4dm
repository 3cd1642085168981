// A reference to an unknown table is no value.
$x:=5+[No such table]
ALERT(String($x))  // expect: 5
