// What was printed before an error stays.
ALERT("one")  // expect: one
ALERT("two")  // expect: two
$x:=1/0  // error: -2 Division by zero
