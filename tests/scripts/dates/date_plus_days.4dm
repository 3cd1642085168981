// A number added to a date counts days.
$d:=!2024-01-31!+1
ALERT(String(Day of($d)))  // expect: 1
ALERT(String(Month of($d)))  // expect: 2
ALERT(String(Year of($d)))  // expect: 2024
ALERT(Choose(!2024-12-31!+1=!2025-01-01!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-01-01!+366=!2025-01-01!;"yes";"no"))  // expect: yes
