// Brackets nest.
ALERT(String((((5)))))  // expect: 5
ALERT(String(((1+2)*(3+(4*5)))))  // expect: 69
