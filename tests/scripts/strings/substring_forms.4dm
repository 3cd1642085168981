// Substring takes a start and perhaps a count.
ALERT(Substring("hello";2;3))  // expect: ell
ALERT(Substring("hello";3))  // expect: llo
ALERT(Substring("hello";4;10))  // expect: lo
ALERT(String(Length(Substring("hello";9))))  // expect: 0
