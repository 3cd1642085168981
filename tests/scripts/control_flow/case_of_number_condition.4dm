// The condition of a branch must be a Boolean.
Case of
  : (1=2)
    ALERT("never")
  : (1)  // error: -22 Wrong Case Statement Line #5
    ALERT("never")
End case
