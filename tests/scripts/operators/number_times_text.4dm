// A number times a text is the text repeated.
ALERT(2*"ab")  // expect: abab
ALERT(3.9*"x")  // expect: xxx
ALERT(2*"ab"*2)  // expect: abababab
