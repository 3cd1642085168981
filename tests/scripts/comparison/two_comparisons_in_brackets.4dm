// Several comparisons need brackets.
$a:=1
$b:=2
ALERT(Choose(($a=1) & ($b=2);"yes";"no"))  // expect: yes
ALERT(Choose(($a=1) & ($b=3);"yes";"no"))  // expect: no
ALERT(Choose(($a=2) | ($b=2);"yes";"no"))  // expect: yes
