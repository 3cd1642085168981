// February has 29 days every fourth year, but for most full centuries.
ALERT(String(Day of(!2000-02-28!+1)))  // expect: 29
ALERT(String(Day of(!1900-02-28!+1)))  // expect: 1
ALERT(String(Day of(!2024-02-28!+1)))  // expect: 29
ALERT(String(Day of(!2023-02-28!+1)))  // expect: 1
