// A time does not add to a date.
$x:=!2024-01-01!+?00:00:10?  // error: -10 Syntax error: Invalid type
