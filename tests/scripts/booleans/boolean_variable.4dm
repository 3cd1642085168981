// A comparison can be stored and tested.
$b:=3>2
If ($b)
  ALERT("greater")  // expect: greater
End If
$b:=False
If ($b)
  ALERT("still")
Else
  ALERT("changed")  // expect: changed
End If
