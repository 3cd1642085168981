// Required: a step between 0 and 1 is truncated to 0, so no pass is run.
For ($i;1;3;0.5)
  ALERT("never")
End For
ALERT("end")  // expect: end
