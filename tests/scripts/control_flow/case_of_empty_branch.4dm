// A branch may be empty.
Case of
  : (1=2)
  : (1=1)
  : (1=1)
    ALERT("never")
End case
ALERT("end")  // expect: end
