// The number of days is truncated.
ALERT(Choose(!2024-01-01!+1.9=!2024-01-02!;"yes";"no"))  // expect: yes
ALERT(Choose(!2024-01-01!+0.9=!2024-01-01!;"yes";"no"))  // expect: yes
