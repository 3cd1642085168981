// Logic operators fold Boolean values.
$t:=(1=1)
$f:=(1=2)
ALERT(Choose($t & $t;"yes";"no"))  // expect: yes
ALERT(Choose($t & $f;"yes";"no"))  // expect: no
ALERT(Choose($f & $t;"yes";"no"))  // expect: no
ALERT(Choose($f | $t;"yes";"no"))  // expect: yes
ALERT(Choose($t | $f;"yes";"no"))  // expect: yes
ALERT(Choose($f | $f;"yes";"no"))  // expect: no
