// There is no character before the start.
vs:="abc"
$x:=vs[[-1]]  // error: -36 String access "vs" not possible. Index: -1 String size: 3
