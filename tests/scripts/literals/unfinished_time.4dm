// A time without its closing mark is no value.
// error next: -5 Undefined assignment variable type
$x:=?12:30:00
