// A declared picture is empty.
C_PICTURE($p)
$q:=$p
ALERT(String(Picture size($q)))  // expect: 0
