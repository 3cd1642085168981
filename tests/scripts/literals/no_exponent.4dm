// Required: there are no exponents, and the letter begins a name.
$x:=1e5  // error: -14 Unknown Variable "e5"
