// Three levels of If inside a loop.
C_REAL($a;$b;$c)
For ($i;1;2000000)
	If (($i%2)=0)
		If (($i%3)=0)
			$a:=$a+1
		Else
			If (($i%5)=0)
				$b:=$b+1
			Else
				$c:=$c+1
			End if
		End if
	Else
		$c:=$c+2
	End if
End for
ALERT(String($a)+" "+String($b)+" "+String($c))
