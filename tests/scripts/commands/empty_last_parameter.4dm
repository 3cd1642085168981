// A separator at the end adds no parameter.
ALERT("a";)  // expect: a
ALERT(String(Length("abc";)))  // expect: 3
