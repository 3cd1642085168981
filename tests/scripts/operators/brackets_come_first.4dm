// A bracket is evaluated before the rest of the line.
ALERT(String(2+(3*4)))  // expect: 14
ALERT(String((2+3)*(4+1)))  // expect: 25
ALERT(String(((1+2)*(3+4))-(1)))  // expect: 20
