// Required: Null leaves the text of a variable in place.
$s:="abc"
$s:=Null
ALERT($s)  // expect: abc
