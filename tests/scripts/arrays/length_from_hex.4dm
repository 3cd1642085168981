// The length of an array may be any number.
ARRAY TEXT($a;0x0A)
ALERT(String(Size of array($a)))  // expect: 10
