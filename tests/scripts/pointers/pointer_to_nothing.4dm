// An arrow at the end of a line points to nothing.
// error next: -6 Pointer points to nothing!
$p:=->
