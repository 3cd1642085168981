// Required: a For with step 0 runs no pass and leaves its variable at the start.
For ($i;1;3;0)
  ALERT("never")
End For
ALERT("left at "+String($i))  // expect: left at 1
