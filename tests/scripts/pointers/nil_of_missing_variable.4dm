// Is nil pointer of a missing variable is no value.
$b:=Is nil pointer($missing)  // error: -5 Undefined assignment variable type
