// The backslash gives the quotient truncated toward zero.
ALERT(String(7\2))  // expect: 3
ALERT(String(-7\2))  // expect: -3
ALERT(String(7.9\2))  // expect: 3
ALERT(String(1\2))  // expect: 0
