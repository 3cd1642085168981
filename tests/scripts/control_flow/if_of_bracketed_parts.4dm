// A condition may be made of several brackets behind the keyword.
$a:=1
$b:=2
If ($a=1) & ($b=2)
  ALERT("both")  // expect: both
End If
If ($a=2) | ($b=2)
  ALERT("one of them")  // expect: one of them
End If
If ($a=1) & ($b=3)
  ALERT("never")
Else
  ALERT("not both")  // expect: not both
End If
