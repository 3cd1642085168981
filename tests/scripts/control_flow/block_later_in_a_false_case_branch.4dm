// A block that does not stand right behind a false condition hides nothing.
$a:=2
Case of
  : ($a=1)
    ALERT("one")
    If (1=1)
      ALERT("one again")
    End If
  : ($a=2)
    ALERT("two")  // expect: two
  Else
    ALERT("else")
End case
