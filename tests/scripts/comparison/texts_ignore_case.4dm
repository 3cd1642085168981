// Texts compare without regard to case.
ALERT(Choose("ABC"="abc";"yes";"no"))  // expect: yes
ALERT(Choose("Hello World"="hELLO wORLD";"yes";"no"))  // expect: yes
