// Two dates do not add.
$x:=!2024-01-01!+!2024-01-01!  // error: -32 Formula not supported!
