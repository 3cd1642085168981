// Required: a slash and a star are two operators, of which the last is applied.
ALERT(String(8/*2))  // expect: 16
