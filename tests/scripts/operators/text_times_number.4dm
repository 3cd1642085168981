// A text times a number is the text repeated.
ALERT("ab"*2)  // expect: abab
ALERT("ab"*2.9)  // expect: abab
ALERT("ab"*1)  // expect: ab
ALERT("ab"*2+"c")  // expect: ababc
