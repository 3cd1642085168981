// The method that recursive_calls measures.
C_REAL($0;$1)
If ($1<2)
	$0:=$1
Else
	$0:=fibonacci($1-1)+fibonacci($1-2)
End if
