// The length of an array is truncated.
ARRAY TEXT($a;2.9)
ALERT(String(Size of array($a)))  // expect: 2
