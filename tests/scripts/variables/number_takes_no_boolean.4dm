// There is no conversion from Boolean to number.
$n:=1
$n:=True  // error: -10 Variable "$n" has incorrect type!
