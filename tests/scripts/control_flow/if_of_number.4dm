// A condition must be a Boolean; a keyword has no name in the message.
If (1)  // error: -13 Command "" wrong parameter type
  ALERT("never")
End If
