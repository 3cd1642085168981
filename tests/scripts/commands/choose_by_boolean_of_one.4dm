// Choose with a Boolean needs both values.
$x:=Choose(True;"a")  // error: -10 Invalid type in Parameter 1
