// Calls itself from a loop.
For ($i;1;$1)
  ALERT(String($1)+" "+String($i))
  If ($1>1)
    count_down($1-1)
  End If
End For
