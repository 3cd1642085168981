// A variable that the host does not have cannot be pointed to.
$p:=_Get 4D Variable Pointer("vnone")  // error: -14 Unknown 4D-Variable "vnone"
