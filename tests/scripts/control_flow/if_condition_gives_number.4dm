// A condition that grows behind its brackets must stay a Boolean.
If (1=1)+1  // error: -10 Syntax error: Invalid type
  ALERT("never")
End If
