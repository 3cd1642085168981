// A member of a variable that does not exist cannot be set.
$o.a:=1  // error: -57 Object variable not found!
