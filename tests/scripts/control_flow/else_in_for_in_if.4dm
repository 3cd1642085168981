// Required: an Else inside a For takes its meaning from the If around it, and finds no end at its own depth.
If (1=1)
  For ($i;1;2)
    ALERT("a")  // expect: a
    Else  // error: -15 End If expected
    ALERT("b")
  End For
End If
