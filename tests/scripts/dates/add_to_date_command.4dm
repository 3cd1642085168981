// Add to date adds years, months and days.
$d:=Add to date(!2024-01-15!;1;2;3)
ALERT(Choose($d=!2025-03-18!;"yes";"no"))  // expect: yes
