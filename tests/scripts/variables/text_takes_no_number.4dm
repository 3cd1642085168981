// There is no conversion from number to text.
C_TEXT($t)
$t:=5  // error: -10 Variable "$t" has incorrect type!
