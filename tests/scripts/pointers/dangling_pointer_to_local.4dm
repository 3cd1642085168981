// A local target is looked for in the frame that reads it.
$p:=->$gone
$x:=$p->  // error: -14 Unknown Variable "$gone"
