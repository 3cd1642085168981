// Required: an operator is not cleared after use and serves the next operand as well.
ALERT(String(3+4 5))  // expect: 12
ALERT(String(2*3 4))  // expect: 24
ALERT(String(3 4))  // expect: 7
ALERT(String(20-3 4))  // expect: 13
