// A branch outside of any Case of needs an end.
ALERT("a")  // expect: a
: (1=1)  // error: -21 End case expected
ALERT("never")
