// A text repeated no times, or fewer, is empty.
ALERT(String(Length("ab"*0)))  // expect: 0
ALERT(String(Length(0*"ab")))  // expect: 0
ALERT(String(Length("ab"*(-1))))  // expect: 0
ALERT(String(Length(-2*"ab")))  // expect: 0
