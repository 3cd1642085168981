// A Case of with no true branch and no Else does nothing.
Case of
  : (1=2)
    ALERT("never")
  : (2=3)
    ALERT("never")
End case
ALERT("end")  // expect: end
