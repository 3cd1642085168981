// Num reads a text or a Boolean, and String writes a number.
ALERT(String(Num("12")+1))  // expect: 13
ALERT(String(Num("-7.5")))  // expect: -7.5
ALERT(String(Num(True)))  // expect: 1
ALERT(String(Num(False)))  // expect: 0
ALERT(String(1234.5;"###,##0.00"))  // expect: 1,234.50
