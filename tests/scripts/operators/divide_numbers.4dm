// Division gives a real number and groups to the left.
ALERT(String(7/2))  // expect: 3.5
ALERT(String(1/4))  // expect: 0.25
ALERT(String(8/2/2))  // expect: 2
