// The result is a variable like any other and keeps its kind.
$x:=set_twice(1)
