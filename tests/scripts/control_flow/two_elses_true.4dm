// Of two Else lines the first ends the true branch.
If (1=1)
  ALERT("a")  // expect: a
Else
  ALERT("b")
Else
  ALERT("c")
End If
ALERT("d")  // expect: d
