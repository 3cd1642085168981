// The difference of dates goes on as a number.
ALERT(String(!2024-03-01!-!2024-02-28!*3))  // expect: 6
ALERT(String(!2024-03-01!-!2024-02-28!-1))  // expect: 1
