// A number of the Fibonacci series.
If ($1<2)
  $0:=$1
Else
  $0:=fibonacci_of($1-1)+fibonacci_of($1-2)
End If
