// Required: a colon is a command that does nothing, in an expression as well.
ALERT(String(1:2))  // expect: 3
