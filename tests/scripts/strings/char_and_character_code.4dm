// Char and Character code are each other's contrary.
ALERT(Char(65))  // expect: A
ALERT(String(Character code("A")))  // expect: 65
ALERT(String(Character code("Bz")))  // expect: 66
ALERT(Char(Character code("q")))  // expect: q
