// Counts a character of a text of a million and a half.
C_TEXT($text)
C_REAL($count)
$text:="the quick brown fox jumps over the lazy dog. "*33000
For ($i;1;Length($text))
	If ($text[[$i]]="o")
		$count:=$count+1
	End if
End for
ALERT(String($count))
