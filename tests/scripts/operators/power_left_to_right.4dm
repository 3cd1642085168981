// Powers group to the left.
ALERT(String(2^3))  // expect: 8
ALERT(String(2^3^2))  // expect: 64
ALERT(String(2^(3^2)))  // expect: 512
ALERT(String(10^6))  // expect: 1000000
