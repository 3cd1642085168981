// A Case of inside a branch of a Case of.
$a:=1
$b:=2
Case of
  : ($a=1)
    Case of
      : ($b=1)
        ALERT("1 1")
      : ($b=2)
        ALERT("1 2")  // expect: 1 2
      Else
        ALERT("1 else")
    End case
    ALERT("behind")  // expect: behind
  : ($a=2)
    ALERT("2")
  Else
    ALERT("else")
End case
