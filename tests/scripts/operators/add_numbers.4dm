// Two numbers add.
ALERT(String(2+3))  // expect: 5
ALERT(String(1.5+1.5))  // expect: 3
ALERT(String(0.25+0.5))  // expect: 0.75
