// A Case of inside the Else of a Case of.
$a:=3
Case of
  : ($a=1)
    ALERT("1")
  Else
    Case of
      : ($a=2)
        ALERT("2")
      : ($a=3)
        ALERT("3")  // expect: 3
    End case
End case
ALERT("end")  // expect: end
