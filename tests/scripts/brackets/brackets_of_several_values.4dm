// Values in one bracket are folded like in a line.
ALERT(String((1;2;3)))  // expect: 6
