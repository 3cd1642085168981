// Required: a command written without brackets replaces a value of its kind and takes no part in arithmetic.
$n:=1000000+Count tasks
ALERT(Choose($n<1000000;"alone";"added"))  // expect: alone
$n:=1000000+(Count tasks)
ALERT(Choose($n<1000000;"alone";"added"))  // expect: added
