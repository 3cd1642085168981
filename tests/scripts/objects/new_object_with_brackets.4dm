// New object may have empty brackets.
$o:=New object()
$o.a:=1
ALERT(String($o.a))  // expect: 1
