// Subtraction groups to the left.
ALERT(String(10-3-2))  // expect: 5
ALERT(String(10-(3-2)))  // expect: 9
ALERT(String(2-5))  // expect: -3
