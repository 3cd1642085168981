// Logic operators are applied from left to right.
$t:=(1=1)
$f:=(1=2)
ALERT(Choose($t | $t & $f;"yes";"no"))  // expect: no
ALERT(Choose($t | ($t & $f);"yes";"no"))  // expect: yes
ALERT(Choose($f & $f | $t;"yes";"no"))  // expect: yes
