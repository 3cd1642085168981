// Whether a number is even.
If ($1=0)
  $0:=True
Else
  $0:=is_odd($1-1)
End If
