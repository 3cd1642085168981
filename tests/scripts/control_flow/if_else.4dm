// An If has an Else for the other case.
If (1=2)
  ALERT("then")
Else
  ALERT("else")  // expect: else
End If
If (1=1)
  ALERT("then")  // expect: then
Else
  ALERT("else")
End If
