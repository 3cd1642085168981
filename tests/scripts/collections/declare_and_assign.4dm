// A collection is made, assigned and shared.
C_COLLECTION($c)
$c:=New collection
$d:=$c
ALERT("made")  // expect: made
