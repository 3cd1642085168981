// Day of, Month of, Year of and Day number take a date apart.
$d:=!2024-02-29!
ALERT(String(Day of($d)))  // expect: 29
ALERT(String(Month of($d)))  // expect: 2
ALERT(String(Year of($d)))  // expect: 2024
ALERT(String(Day number($d)))  // expect: 5
ALERT(String(Day number(!2024-03-03!)))  // expect: 1
