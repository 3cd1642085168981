// A bracket that has joined texts before it fails leaves nothing behind.
$t:="ab"
$u:="c"
$v:=($t+$u+$missing)  // error: -14 Unknown Variable "$missing"
