// Required: an index anywhere in the rest of a block belongs to the first text variable.
$a:="xyz"
$b:="abc"
ALERT($a+$b[[1]])  // expect: x
ALERT($a+$b+$b[[2]])  // expect: y
ALERT($a+($b[[1]]))  // expect: xyza
