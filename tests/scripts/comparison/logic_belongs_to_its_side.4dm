// A comparison splits its block, and logic operators belong to one side.
$t:=(1=1)
$f:=(1=2)
ALERT(Choose($t & $f=$f;"yes";"no"))  // expect: yes
ALERT(Choose($f=$f | $t;"yes";"no"))  // expect: no
