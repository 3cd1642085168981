// Required: an unknown table is no token, so the arrow points to nothing.
// error next: -6 Pointer points to nothing!
$p:=->[No such table]
