// Choose with a Boolean takes no third value.
$x:=Choose(True;"a";"b";"c")  // error: -10 Invalid type in Parameter 1
