// A member that does not exist adds nothing to what follows.
$o:=New object
ALERT(String($o.nothing+5))  // expect: 5
