// A For whose start lies behind its end runs no pass.
For ($i;5;1)
  ALERT("never")
End For
ALERT("left at "+String($i))  // expect: left at 5
For ($i;1;5;-1)
  ALERT("never")
End For
ALERT("left at "+String($i))  // expect: left at 1
