// A For may step by more than one.
For ($i;1;10;4)
  ALERT(String($i))
End For
ALERT("left at "+String($i))
// expect: 1
// expect: 5
// expect: 9
// expect: left at 13
