// A leading operator works on zero.
ALERT(String(+5))  // expect: 5
ALERT(String(*5))  // expect: 0
ALERT(String(/5))  // expect: 0
ALERT(String(%5))  // expect: 0
ALERT(String(^5))  // expect: 0
