// Of two Else lines the first begins the false branch and the second ends it.
If (1=2)
  ALERT("a")
Else
  ALERT("b")  // expect: b
Else
  ALERT("c")
End If
ALERT("d")  // expect: d
