// A power truncates base and exponent to whole numbers.
ALERT(String(2.9^2))  // expect: 4
ALERT(String(2^2.9))  // expect: 4
ALERT(String(9^0.5))  // expect: 1
