// Collections do not compare.
$c:=New collection
$x:=$c#$c  // error: -26 Comparison not possible!
