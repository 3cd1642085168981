// There is no conversion from time to number.
C_LONGINT($l)
$l:=?00:00:05?  // error: -10 Variable "$l" has incorrect type!
