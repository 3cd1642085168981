// Empty brackets vanish.
ALERT(String(5+()))  // expect: 5
ALERT(String(()7))  // expect: 7
