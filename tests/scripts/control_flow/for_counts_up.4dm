// A For counts from start to end and leaves its variable behind the end.
For ($i;1;3)
  ALERT(String($i))
End For
ALERT("left at "+String($i))
// expect: 1
// expect: 2
// expect: 3
// expect: left at 4
