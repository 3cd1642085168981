// A date without its closing mark is no value.
// error next: -5 Undefined assignment variable type
$x:=!2024-01-01
