// New collection takes no parameters.
$c:=New collection(1;2)  // error: -13 Command "New collection" wrong count of parameters
