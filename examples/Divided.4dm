// Divided (a; b) -> a/b as text, or words where there is no answer.
If ($2=0)
	$0:="not a number"
Else
	$0:=String($1/$2)
End if
