// An Else met from the false branch needs no end.
If (1=2)
  ALERT("then")
Else
  ALERT("else")  // expect: else
ALERT("end")  // expect: end
