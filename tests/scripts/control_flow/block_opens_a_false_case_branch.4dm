// Required: the search for the next branch goes on at the depth of the line behind a false condition, so a block that opens there hides the other branches.
$a:=2
Case of
  : ($a=1)
    If (1=1)
      ALERT("one")
    End If
  : ($a=2)
    ALERT("two")
  Else
    ALERT("else")  // expect: else
End case
