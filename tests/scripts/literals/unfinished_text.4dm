// A text without its closing quote is no value.
// error next: -5 Undefined assignment variable type
$x:="abc
