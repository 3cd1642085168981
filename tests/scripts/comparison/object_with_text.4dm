// An object does not compare with a text.
$o:=New object
$x:=$o="a"  // error: -25 Wrong type in comparison
