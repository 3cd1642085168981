// A Case of runs the first branch whose condition holds.
For ($i;1;4)
  Case of
    : ($i=1)
      ALERT("one")
    : ($i<3)
      ALERT("below three")
    : ($i=3)
      ALERT("three")
    Else
      ALERT("other")
  End case
End For
// expect: one
// expect: below three
// expect: three
// expect: other
