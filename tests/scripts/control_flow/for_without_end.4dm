// A For that finishes needs its end.
For ($i;1;0)  // error: -16 End For expected
ALERT("never")
