// Length counts UTF-16 units.
ALERT(String(Length("")))  // expect: 0
ALERT(String(Length("hello")))  // expect: 5
ALERT(String(Length("a"*100)))  // expect: 100
