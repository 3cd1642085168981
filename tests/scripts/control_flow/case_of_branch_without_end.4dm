// The end of a branch needs the end of its Case of.
Case of
  : (1=1)
    ALERT("one")  // expect: one
  : (1=2)  // error: -21 End case expected
    ALERT("never")
