// Mod and Abs.
ALERT(String(Mod(7;3)))  // expect: 1
ALERT(String(Mod(4;2)))  // expect: 0
ALERT(String(Abs(-5)))  // expect: 5
ALERT(String(Abs(2.5)))  // expect: 2.5
