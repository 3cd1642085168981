// A Case of without branches goes on behind its end, or at its Else.
Case of
End case
ALERT("a")  // expect: a
Case of
  Else
    ALERT("b")  // expect: b
End case
