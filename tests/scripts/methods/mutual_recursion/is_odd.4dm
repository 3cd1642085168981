// Whether a number is odd.
If ($1=0)
  $0:=False
Else
  $0:=is_even($1-1)
End If
