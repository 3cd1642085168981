// An error in a method that a condition calls is the only one.
If (fails_in_condition(1)=2)
  ALERT("never")
End If
