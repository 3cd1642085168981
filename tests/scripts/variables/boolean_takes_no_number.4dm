// There is no conversion from number to Boolean.
C_BOOLEAN($b)
$b:=1  // error: -10 Variable "$b" has incorrect type!
