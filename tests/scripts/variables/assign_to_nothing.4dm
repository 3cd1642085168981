// An assignment needs a target.
:=5  // error: -3 Syntax Error: Could not make assignment!
