// A line that is only an expression runs without effect.
1+2*3
"text"
$a:=4
$a+1
ALERT(String($a))  // expect: 4
