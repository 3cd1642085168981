// Open document takes texts.
$h:=Open document(5)  // error: -13 Command "Open document" wrong count of parameters
