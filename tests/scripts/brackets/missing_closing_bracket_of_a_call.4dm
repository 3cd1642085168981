// An inner call runs before the missing bracket is found.
ALERT("a"+Uppercase("b")  // error: -41 Closed Bracket expected
