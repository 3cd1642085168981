// Of two Boolean values with no operator the last one is the value.
$t:=(1=1)
$f:=(1=2)
ALERT(Choose($t $f;"yes";"no"))  // expect: no
ALERT(Choose($f $t;"yes";"no"))  // expect: yes
