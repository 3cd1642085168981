// There is no character 0.
vs:="abc"
$x:=vs[[0]]  // error: -36 String access "vs" not possible. Index: 0 String size: 3
