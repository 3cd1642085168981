// Required: a member function with empty brackets is not called, and the object stays the value.
$o:=New object
$o.n:=4
$p:=$o.something()
ALERT(String($p.n))  // expect: 4
