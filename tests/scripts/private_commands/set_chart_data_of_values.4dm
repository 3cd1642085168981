// _Set Chart Data takes no values.
$x:=_Set Chart Data(1;2;3;4)  // error: -13 Command "" wrong parameter type
