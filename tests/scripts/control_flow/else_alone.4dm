// An Else outside of any block does nothing.
ALERT("a")  // expect: a
Else
ALERT("b")  // expect: b
