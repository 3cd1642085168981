// Arrays live in every scope.
ARRAY TEXT(va;1)
ARRAY TEXT(<>va;2)
ARRAY TEXT($va;3)
va{1}:="process"
<>va{1}:="interprocess"
$va{1}:="local"
ALERT(va{1})  // expect: process
ALERT(<>va{1})  // expect: interprocess
ALERT($va{1})  // expect: local
