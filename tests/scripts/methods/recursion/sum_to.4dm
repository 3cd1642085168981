// The sum of the numbers up to one.
$0:=0
If ($1>0)
  $0:=$1+sum_to($1-1)
End If
