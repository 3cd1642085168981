// Required: a date behind a time does nothing.
ALERT(Choose((?00:00:10?+!2024-01-01!)=?00:00:10?;"yes";"no"))  // expect: yes
