// The condition of a branch may be made of several brackets.
$a:=2
$b:=3
Case of
  : ($a=1) | ($b=1)
    ALERT("first")
  : ($a=2) & ($b=3)
    ALERT("second")  // expect: second
End case
