// The right side is the pattern; on the left the at sign is a character.
ALERT(Choose("he@"="hello";"yes";"no"))  // expect: no
