// An object is no text.
$o:=New object
ALERT($o)  // error: -13 Command "ALERT" wrong parameter type
