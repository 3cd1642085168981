// A variable without a name cannot be pointed to.
$p:=->$  // error: -9 Pointer to an invalid Variable!
