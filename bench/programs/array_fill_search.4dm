// Fills an array of 200,000 and searches it 100 times.
ARRAY LONGINT($values;200000)
For ($i;1;200000)
	$values{$i}:=$i*2
End for
C_REAL($sum)
For ($i;1;100)
	$sum:=$sum+Find in array($values;$i*4000)
End for
ALERT(String($sum))
