// Any base to the power of zero is one.
ALERT(String(5^0))  // expect: 1
ALERT(String(0^0))  // expect: 1
