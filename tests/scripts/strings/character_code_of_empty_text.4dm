// The code of an empty text is 0.
ALERT(String(Character code("")))  // expect: 0
