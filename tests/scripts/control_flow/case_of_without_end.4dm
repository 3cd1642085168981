// A Case of whose branches all failed needs its end.
Case of
  : (1=2)
    ALERT("never")
  : (1=3)  // error: -21 End Case expected
    ALERT("never")
