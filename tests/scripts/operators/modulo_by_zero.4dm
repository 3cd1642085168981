// The remainder by zero sets no error.
$x:=7%0
ALERT("no error")  // expect: no error
