// Required: a comment behind an empty condition makes the keyword run as a command with no parameters.
If ()  // error: -13 Command "" wrong count of parameters
End If
