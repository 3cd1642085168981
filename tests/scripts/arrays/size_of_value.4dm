// Size of array needs a variable.
$x:=Size of array(5)  // error: -13 Command "Size of array" wrong parameter type
