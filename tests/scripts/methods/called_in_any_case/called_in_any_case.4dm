// A method's name is read in any case of letters.
ALERT(String(GIVE_eight))  // expect: 8
