// A member of an object may be a collection.
$o:=New object
$c:=New collection
$o.list:=$c
$d:=$o.list
$o.name:="kept"
ALERT($o.name)  // expect: kept
