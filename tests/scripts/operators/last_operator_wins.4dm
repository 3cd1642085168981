// Required: of two operators in a row the last one is applied.
ALERT(String(3*-5))  // expect: -2
ALERT(String(3--5))  // expect: -2
ALERT(String(3+*5))  // expect: 15
ALERT(String(-+5))  // expect: 5
