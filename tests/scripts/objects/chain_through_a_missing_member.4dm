// Required: a missing member on the way is passed over as well.
$o:=New object
$o.x.y:=5
ALERT(String($o.y))  // expect: 5
