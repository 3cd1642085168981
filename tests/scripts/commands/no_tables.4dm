// An empty structure has no tables.
ALERT(String(Get last table number))  // expect: 0
