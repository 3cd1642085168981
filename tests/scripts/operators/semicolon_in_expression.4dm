// A semicolon outside of brackets is passed over.
$x:=1;2
ALERT(String($x))  // expect: 3
