// Required: a logic operator between numbers leaves the arithmetic operator in force.
ALERT(String(5 & 3))  // expect: 8
ALERT(String(5 | 3))  // expect: 8
ALERT(String(5*2 & 3))  // expect: 30
