// Position gives the place of a text in another, 0 if it is not there.
ALERT(String(Position("ll";"hello")))  // expect: 3
ALERT(String(Position("x";"hello")))  // expect: 0
ALERT(String(Position("l";"hello";4)))  // expect: 4
ALERT(String(Position("LL";"hello")))  // expect: 3
ALERT(String(Position("LL";"hello";1;*)))  // expect: 0
