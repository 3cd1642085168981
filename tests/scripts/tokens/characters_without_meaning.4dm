// Characters that begin no token are passed over.
ALERT(String(5'))  // expect: 5
ALERT(String(2@+3))  // expect: 5
ALERT(String(~4))  // expect: 4
