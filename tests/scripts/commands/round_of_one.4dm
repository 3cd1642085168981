// Round takes two numbers.
$x:=Round(1)  // error: -13 Command "Round" wrong count of parameters
