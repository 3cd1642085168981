// Required: nothing is inserted behind the last element, nor before the first.
ARRAY LONGINT($a;2)
INSERT IN ARRAY($a;3)
INSERT IN ARRAY($a;0)
INSERT IN ARRAY($a;-1)
ALERT(String(Size of array($a)))  // expect: 2
