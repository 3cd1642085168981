// Choose needs a Boolean or a number.
$x:=Choose("a";"b";"c")  // error: -10 Invalid type in Parameter 1
