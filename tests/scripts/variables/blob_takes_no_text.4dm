// A BLOB takes BLOBs only.
C_BLOB($b)
$b:="a"  // error: -10 Variable "$b" has incorrect type!
