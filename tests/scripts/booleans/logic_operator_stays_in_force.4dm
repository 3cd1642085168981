// Required: a logic operator is not cleared after use.
$t:=(1=1)
$f:=(1=2)
ALERT(Choose($t & $f $t;"yes";"no"))  // expect: no
ALERT(Choose($f | $t $f;"yes";"no"))  // expect: yes
