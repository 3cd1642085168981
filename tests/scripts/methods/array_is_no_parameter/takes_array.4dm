// Uses its parameter.
ALERT("called")
$x:=$1  // error: -5 Undefined assignment variable type
