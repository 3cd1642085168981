// COPY ARRAY replaces the second variable, whatever it was.
ARRAY TEXT($a;1)
$a{1}:="x"
$b:=5
COPY ARRAY($a;$b)
ALERT($b{1})  // expect: x
