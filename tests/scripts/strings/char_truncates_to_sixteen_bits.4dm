// Char takes the low 16 bits of its number.
ALERT(Char(65536+66))  // expect: B
ALERT(Char(67.9))  // expect: C
