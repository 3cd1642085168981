// A date minus a date is the number of days between them.
ALERT(String(!2024-03-01!-!2024-02-28!))  // expect: 2
ALERT(String(!2024-02-28!-!2024-03-01!))  // expect: -2
ALERT(String(!2024-01-01!-!2024-01-01!))  // expect: 0
ALERT(String(!2025-01-01!-!2024-01-01!))  // expect: 366
