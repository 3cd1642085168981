// A name is looked up in its own scope only.
x:=1
$y:=$x  // error: -14 Unknown Variable "$x"
