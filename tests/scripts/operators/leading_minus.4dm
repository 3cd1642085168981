// A leading minus subtracts from nothing, which counts as zero.
ALERT(String(-5))  // expect: -5
ALERT(String(-5+3))  // expect: -2
ALERT(String(2-(-3)))  // expect: 5
ALERT(String(2*(-3)))  // expect: -6
