// There is no character behind the end.
vs:="abc"
$x:=vs[[4]]  // error: -36 String access "vs" not possible. Index: 4 String size: 3
