// An Else behind a true branch needs the end of its Case of.
Case of
  : (1=1)
    ALERT("one")  // expect: one
  Else  // error: -21 End case expected
    ALERT("never")
