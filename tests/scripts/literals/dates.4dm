// Dates stand between exclamation marks.
$d:=!2024-02-29!
ALERT(String(Year of($d)))  // expect: 2024
ALERT(String(Month of($d)))  // expect: 2
ALERT(String(Day of($d)))  // expect: 29
