// _Get Fitting Text needs its text.
$s:=_Get Fitting Text  // error: -13 Command "" wrong count of parameters
