// Numbers are digits and one decimal separator.
ALERT(String(0))  // expect: 0
ALERT(String(007))  // expect: 7
ALERT(String(1.50))  // expect: 1.5
ALERT(String(123456789))  // expect: 123456789
ALERT(String(12.))  // expect: 12
