// An empty text has no characters.
vs:=""
$x:=vs[[1]]  // error: -36 String access "vs" not possible. Index: 1 String size: 0
