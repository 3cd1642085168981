// Current date and Current time give values of their kinds.
ALERT(Choose(Current date>=!2024-01-01!;"yes";"no"))  // expect: yes
ALERT(Choose(Current time>=?00:00:00?;"yes";"no"))  // expect: yes
ALERT(Choose(Current date(*)>=!2024-01-01!;"yes";"no"))  // expect: yes
