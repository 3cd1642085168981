// Required: elements that are pictures or pointers add nothing to an expression.
ARRAY PICTURE($p;1)
ARRAY POINTER($q;1)
$a:=1
$q{1}:=->$a
ALERT(String(5+$p{1}))  // expect: 5
ALERT(String(5+$q{1}))  // expect: 5
