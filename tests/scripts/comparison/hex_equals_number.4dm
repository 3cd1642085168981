// A hexadecimal literal is a number like any other.
ALERT(Choose(0x10=16;"yes";"no"))  // expect: yes
ALERT(Choose(16#0x10;"yes";"no"))  // expect: no
ALERT(Choose(0x7FFFFFFF=2147483647;"yes";"no"))  // expect: yes
