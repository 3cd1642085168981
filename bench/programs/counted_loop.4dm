// Sum with arithmetic over a counted loop.
C_REAL($sum)
For ($i;1;2000000)
	$sum:=$sum+(($i*3)%7)-1
End for
ALERT(String($sum))
