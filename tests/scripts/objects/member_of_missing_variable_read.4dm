// A member of a variable that does not exist cannot be read.
$x:=$o.a  // error: -14 Unknown Variable "$o"
