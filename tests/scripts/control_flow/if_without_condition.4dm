// An If needs a condition.
// error next: -27 Wrong If-Statement
If ()
  ALERT("never")
End If
