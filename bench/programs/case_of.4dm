// A choice among six branches inside a loop.
C_REAL($hits;$rest;$k)
For ($i;1;1500000)
	$k:=$i%8
	Case of
		: ($k=0)
			$hits:=$hits+1
		: ($k=1)
			$hits:=$hits+2
		: ($k=2)
			$hits:=$hits+3
		: ($k=3)
			$hits:=$hits+4
		: ($k=4)
			$hits:=$hits+5
		Else
			$rest:=$rest+1
	End case
End for
ALERT(String($hits)+" "+String($rest))
