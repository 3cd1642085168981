// Tokens need no blanks between them.
For($i;1;1)
If($i=1)
ALERT("close")//expect: close
End If
End For
