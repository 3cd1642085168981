// An error ends the method.
ALERT("a")  // expect: a
$x:=$missing  // error: -14 Unknown Variable "$missing"
ALERT("b")
