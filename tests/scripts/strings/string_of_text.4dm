// Required: String has no form for a text, and its last form has three parameters.
$x:=String("a")  // error: -13 Command "String" wrong count of parameters
