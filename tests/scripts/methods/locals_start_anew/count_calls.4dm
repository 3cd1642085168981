// Counts in a process variable, and finds its local text still unmade.
C_LONGINT(vcalls)
C_LONGINT($mine)
vcalls:=vcalls+1
$mine:=$mine+1
If ($mine#1)
  ALERT("a local lived on")
End If
