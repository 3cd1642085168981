// A position outside of the array removes nothing.
ARRAY TEXT($a;2)
DELETE FROM ARRAY($a;0)
DELETE FROM ARRAY($a;3)
DELETE FROM ARRAY($a;-1)
DELETE FROM ARRAY($a;1;0)
ALERT(String(Size of array($a)))  // expect: 2
