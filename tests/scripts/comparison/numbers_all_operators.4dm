// Numbers compare with all six operators.
ALERT(Choose(1<2;"yes";"no"))  // expect: yes
ALERT(Choose(2<2;"yes";"no"))  // expect: no
ALERT(Choose(2<=2;"yes";"no"))  // expect: yes
ALERT(Choose(3<=2;"yes";"no"))  // expect: no
ALERT(Choose(3>2;"yes";"no"))  // expect: yes
ALERT(Choose(2>2;"yes";"no"))  // expect: no
ALERT(Choose(2>=2;"yes";"no"))  // expect: yes
ALERT(Choose(1>=2;"yes";"no"))  // expect: no
ALERT(Choose(2=2;"yes";"no"))  // expect: yes
ALERT(Choose(1=2;"yes";"no"))  // expect: no
ALERT(Choose(1#2;"yes";"no"))  // expect: yes
ALERT(Choose(2#2;"yes";"no"))  // expect: no
