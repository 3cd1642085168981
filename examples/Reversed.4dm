// Reversed (text) -> the text from behind.
$0:=""
For ($i;Length($1);1;-1)
	$0:=$0+($1[[$i]])
End for
