// Uppercase and Lowercase change the case.
ALERT(Uppercase("hello World 1"))  // expect: HELLO WORLD 1
ALERT(Lowercase("HELLO World 1"))  // expect: hello world 1
ALERT(Uppercase("abc";*))  // expect: ABC
ALERT(Lowercase("ABC";*))  // expect: abc
