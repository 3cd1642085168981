// An object parameter is the caller's object.
$o:=New object
$o.n:=1
raise_n($o)
ALERT(String($o.n))  // expect: 2
