// Null removes the elements of an array, which stays an array.
ARRAY TEXT($a;3)
$a:=Null
ALERT(String(Size of array($a)))  // expect: 0
APPEND TO ARRAY($a;"x")
ALERT($a{1})  // expect: x
