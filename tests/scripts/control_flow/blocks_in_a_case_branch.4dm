// A true branch may hold any block.
Case of
  : (1=1)
    If (1=2)
      ALERT("then")
    Else
      ALERT("else")  // expect: else
    End If
    For ($i;1;1)
      ALERT("for")  // expect: for
    End For
  : (1=1)
    ALERT("never")
End case
