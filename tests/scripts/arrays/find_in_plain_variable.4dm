// Required: a plain variable has a value, and the last form that Find in array tries has three parameters.
vx:=1
$x:=Find in array(vx;1)  // error: -13 Command "Find in array" wrong count of parameters
