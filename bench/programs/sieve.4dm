// Primes below 1,000,000 by the sieve.
ARRAY BOOLEAN($composite;1000000)
C_REAL($count;$k)
For ($i;2;1000000)
	If (Not($composite{$i}))
		$count:=$count+1
		$k:=$i*$i
		While ($k<=1000000)
			$composite{$k}:=True
			$k:=$k+$i
		End while
	End if
End for
ALERT(String($count))
