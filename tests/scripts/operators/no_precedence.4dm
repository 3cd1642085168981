// Operators are applied from left to right, without precedence.
ALERT(String(2+3*4))  // expect: 20
ALERT(String(1+2*3))  // expect: 9
ALERT(String(10-4/2))  // expect: 3
ALERT(String(2*3+4))  // expect: 10
