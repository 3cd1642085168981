// A member works on the value to its left, which it replaces.
$o:=New object
$o.a:=3
ALERT(String($o.a+1))  // expect: 4
ALERT(String(1+($o.a)))  // expect: 4
