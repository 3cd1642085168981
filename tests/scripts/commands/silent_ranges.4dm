// Required: an unknown command of some ranges does nothing and reports nothing.
SORT LIST(5)
MAXIMIZE WINDOW
DOM CLOSE XML("x")
$x:=5+Right click
ALERT(String($x))  // expect: 5
