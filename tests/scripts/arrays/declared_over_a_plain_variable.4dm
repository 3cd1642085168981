// An array declaration leaves a variable of another kind as it is.
$x:=5
ARRAY TEXT($x;3)
ALERT(String($x))  // expect: 5
