// An If that is true needs no end, one that is false does.
If (1=1)
  ALERT("first")  // expect: first
$a:=1
If ($a=2)  // error: -15 End If expected
  ALERT("never")
