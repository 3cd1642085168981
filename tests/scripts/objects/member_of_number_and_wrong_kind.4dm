// Required: an assignment to a member of no object goes on with the variable itself, and both errors speak.
$n:=5
$n.a:="text"  // error: -10 Variable is no object!Variable "$n" has incorrect type!
