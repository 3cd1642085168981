// Date takes a text only.
$d:=Date(20240229)  // error: -13 Command "Date" wrong parameter type
