// A For with a negative step counts down.
For ($i;3;1;-1)
  ALERT(String($i))
End For
ALERT("left at "+String($i))
// expect: 3
// expect: 2
// expect: 1
// expect: left at 0
