// Required: any operator but plus between two texts drops the right one without a word.
ALERT("a"-"b")  // expect: a
ALERT("a"/"b")  // expect: a
ALERT("a"*"b")  // expect: a
ALERT("a"%"b"+"c")  // expect: ac
