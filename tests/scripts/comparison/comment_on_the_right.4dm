// Required: a comment behind the sign of a comparison is a token, though no value.
$x:=1=  // error: -25 Wrong type in comparison
