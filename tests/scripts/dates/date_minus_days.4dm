// A number taken from a date counts days backward.
ALERT(Choose(!2024-03-01!-1=!2024-02-29!;"yes";"no"))  // expect: yes
ALERT(Choose(!2025-01-01!-1=!2024-12-31!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-03-01!+(-1)=!2024-02-29!;"yes";"no"))  // expect: yes
