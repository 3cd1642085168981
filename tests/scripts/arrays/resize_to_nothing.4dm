// A length of zero or below empties the array.
ARRAY TEXT($a;3)
ARRAY TEXT($a;0)
ALERT(String(Size of array($a)))  // expect: 0
ARRAY TEXT($a;3)
ARRAY TEXT($a;-3)
ALERT(String(Size of array($a)))  // expect: 0
