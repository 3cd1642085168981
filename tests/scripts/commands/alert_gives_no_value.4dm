// A command without result leaves no trace in an expression.
$x:=5+ALERT("called")  // expect: called
ALERT(String($x))  // expect: 5
