// Booleans compare for equal and unequal.
$t:=(1=1)
$f:=(1=2)
ALERT(Choose($t=$t;"yes";"no"))  // expect: yes
ALERT(Choose($t=$f;"yes";"no"))  // expect: no
ALERT(Choose($t#$f;"yes";"no"))  // expect: yes
ALERT(Choose(True=True;"yes";"no"))  // expect: yes
