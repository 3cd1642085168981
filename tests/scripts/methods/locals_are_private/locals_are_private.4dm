// Locals of a method are not seen by its caller, nor the other way.
$x:=1
use_locals(0)
ALERT(String($x))  // expect: 1
ALERT(String($hidden))  // error: -14 Unknown Variable "$hidden"
