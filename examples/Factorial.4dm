// Factorial (n) -> 1*2*...*n. A parameter of a call is evaluated before the call, so the brackets are enough.
If ($1<2)
	$0:=1
Else
	$0:=$1*Factorial($1-1)
End if
