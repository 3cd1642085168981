// Required: a capital X does not begin a hexadecimal literal.
$y:=0X1F  // error: -14 Unknown Variable "X1F"
