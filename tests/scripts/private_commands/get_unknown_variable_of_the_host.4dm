// A variable that the host does not have cannot be read.
_GET 4D VARIABLE("vnone")  // error: -14 Unknown 4D-Variable "vnone"
