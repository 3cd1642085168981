// Required: braces behind a text variable pass without effect, and the index does not join the text.
$s:="abc"
$x:=$s{1}  // error: -32 Formula not supported!
