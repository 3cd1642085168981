// End If, End case and Repeat alone do nothing.
ALERT("a")  // expect: a
End If
End case
Repeat
ALERT("b")  // expect: b
