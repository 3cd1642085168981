// A second declaration resizes the array and keeps the elements that stay.
ARRAY TEXT($a;2)
$a{1}:="one"
$a{2}:="two"
ARRAY TEXT($a;3)
ALERT($a{1}+$a{2}+$a{3}+"!")  // expect: onetwo!
ARRAY TEXT($a;1)
ARRAY TEXT($a;2)
ALERT($a{1}+$a{2}+"!")  // expect: one!
