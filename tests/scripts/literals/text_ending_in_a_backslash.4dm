// Required: a backslash before the closing quote takes it away.
// error next: -5 Undefined assignment variable type
$x:="abc\"
