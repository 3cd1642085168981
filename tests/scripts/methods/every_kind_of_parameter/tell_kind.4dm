// Prints five parameters.
ALERT(String($1))
ALERT($2)
ALERT(String(Day of($3)))
If ($4=?00:01:00?)
  ALERT("a minute")
End If
If ($5)
  ALERT("true")
End If
