// Required: braces behind a variable that is no array pass without effect, and the index is one more operand.
$x:=5
ALERT(String($x{2}))  // expect: 7
