// Dates compare by year, then month, then day.
ALERT(Choose(!2023-12-31!<!2024-01-01!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-02-01!>!2024-01-31!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-01-02!>!2024-01-01!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-01-01!<=!2024-01-01!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-01-01!>=!2024-01-02!;"yes";"no"))  // expect: no
ALERT(Choose(!2024-01-01!=!2024-01-01!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-01-01!=!2023-01-01!;"yes";"no"))  // expect: no
ALERT(Choose(!2024-01-01!#!2024-01-02!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-01-01!<!2024-01-01!;"yes";"no"))  // expect: no
