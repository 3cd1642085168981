// A single slash is a division.
ALERT(String(8/ /2))  // expect: 4
