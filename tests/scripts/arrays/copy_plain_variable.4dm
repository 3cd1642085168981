// COPY ARRAY copies any variable.
$a:="text"
COPY ARRAY($a;$b)
$a:="changed"
ALERT($b)  // expect: text
