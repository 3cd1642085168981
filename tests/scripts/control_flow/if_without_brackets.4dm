// Required: without brackets the keyword runs as a command with no parameters.
$a:=(1=1)
If $a  // error: -13 Command "" wrong count of parameters
  ALERT("never")
End If
