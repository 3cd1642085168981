// Required: less and greater side by side begin an interprocess variable.
$a:=3
<>b:=4
ALERT(String($a<>b))  // expect: 7
