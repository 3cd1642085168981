// Primes below 200,000 by the sieve.
ARRAY BOOLEAN($composite;200000)
C_REAL($count;$k)
For ($i;2;200000)
	If (Not($composite{$i}))
		$count:=$count+1
		$k:=$i*$i
		While ($k<=200000)
			$composite{$k}:=True
			$k:=$k+$i
		End while
	End if
End for
ALERT(String($count))
