// A leading logic operator works on nothing, which counts as false.
$t:=(1=1)
ALERT(Choose(& $t;"yes";"no"))  // expect: no
ALERT(Choose(| $t;"yes";"no"))  // expect: yes
