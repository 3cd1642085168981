// The keyword alone is no condition.
// error next: -27 Wrong If-Statement
If
  ALERT("never")
End If
