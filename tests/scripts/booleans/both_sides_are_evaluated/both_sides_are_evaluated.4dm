// There is no shortcut: both sides of a logic operator are evaluated.
// expect: left
// expect: right
If (say_and_give("left";1=2) & say_and_give("right";1=1))
  ALERT("both")
Else
  ALERT("not both")  // expect: not both
End If
// expect: first
// expect: second
If (say_and_give("first";1=1) | say_and_give("second";1=1))
  ALERT("one of them")  // expect: one of them
End If
