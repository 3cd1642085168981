// Required: a date behind a number does nothing.
ALERT(String(5+!2024-01-01!))  // expect: 5
ALERT(String(5-!2024-01-01!+1))  // expect: 6
