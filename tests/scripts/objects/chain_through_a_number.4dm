// Required: a member on the way that is no object is passed over, and the last name is set on the object at hand.
$o:=New object
$o.a:=1
$o.a.b:=2
ALERT(String($o.b))  // expect: 2
ALERT(String($o.a))  // expect: 1
