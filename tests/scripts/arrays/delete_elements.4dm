// DELETE FROM ARRAY removes one element or several.
ARRAY TEXT($a;5)
For ($i;1;5)
  $a{$i}:=String($i)
End For
DELETE FROM ARRAY($a;2)
ALERT($a{1}+$a{2}+$a{3}+$a{4})  // expect: 1345
DELETE FROM ARRAY($a;2;2)
ALERT($a{1}+$a{2})  // expect: 15
DELETE FROM ARRAY($a;2;10)
ALERT(String(Size of array($a)))  // expect: 1
