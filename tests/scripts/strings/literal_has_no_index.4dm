// Required: an index behind a literal is read as a further operand.
ALERT("abc"[["d"]])  // expect: abcd
