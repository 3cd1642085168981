// Find in array needs a value of a fitting kind.
ARRAY LONGINT(va;3)
$x:=Find in array(va;"a")  // error: -10 Find in array does not work with this type. Variable "va".
