// A private command has no name in a message.
$s:=_HTML Encode(5)  // error: -13 Command "" wrong parameter type
