// A million appends to one text.
C_TEXT($text;$part)
$part:="xy"
For ($i;1;1000000)
	$text:=$text+$part+";"
End for
ALERT(String(Length($text)))
