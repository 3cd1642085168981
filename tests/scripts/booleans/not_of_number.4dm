// Not takes a Boolean only.
$b:=Not(1)  // error: -13 Command "Not" wrong parameter type
