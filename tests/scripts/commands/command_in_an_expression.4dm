// A command with brackets is an operand like any other.
ALERT(String(2*Length("abc")+1))  // expect: 7
ALERT(String(10-Length("abc")-Length("ab")))  // expect: 5
