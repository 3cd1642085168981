// COPY ARRAY from a missing variable reports nothing.
$b:=5
COPY ARRAY($missing;$b)
ALERT(String($b))  // expect: 5
