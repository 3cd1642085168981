// An Else met from the true branch needs an end.
If (1=1)
  ALERT("then")  // expect: then
Else  // error: -15 End If expected
  ALERT("never")
