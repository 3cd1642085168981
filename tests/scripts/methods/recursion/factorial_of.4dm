// The factorial of a number.
If ($1<2)
  $0:=1
Else
  $0:=$1*factorial_of($1-1)
End If
