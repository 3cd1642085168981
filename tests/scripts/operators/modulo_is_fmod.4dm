// The percent operator is the floating remainder, with the sign of the left side.
ALERT(String(7%3))  // expect: 1
ALERT(String(7.5%2))  // expect: 1.5
ALERT(String(-7%3))  // expect: -1
ALERT(String(6%3))  // expect: 0
