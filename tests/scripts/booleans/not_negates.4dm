// Not negates its parameter.
ALERT(Choose(Not(True);"yes";"no"))  // expect: no
ALERT(Choose(Not(1=2);"yes";"no"))  // expect: yes
ALERT(Choose(Not(Not(1=1));"yes";"no"))  // expect: yes
