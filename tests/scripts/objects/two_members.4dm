// Members of different names are two values.
$o:=New object
$o.a:=1
$o.b:=2
ALERT(String($o.a+($o.b)))  // expect: 3
