// Each side of a comparison is evaluated on its own.
ALERT(Choose(1+2=3;"yes";"no"))  // expect: yes
ALERT(Choose(3=1+2;"yes";"no"))  // expect: yes
ALERT(Choose(2*3=1+5;"yes";"no"))  // expect: yes
ALERT(Choose(10-4>2*3;"yes";"no"))  // expect: no
