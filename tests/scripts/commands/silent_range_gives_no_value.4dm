// Required: an unknown command of a silent range gives no value.
$x:=DOM Parse XML source("x")  // error: -5 Undefined assignment variable type
