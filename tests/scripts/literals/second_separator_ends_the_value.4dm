// Required: a second decimal separator ends the value, and the rest of the digits is dropped.
ALERT(String(1.2.3))  // expect: 1.2
