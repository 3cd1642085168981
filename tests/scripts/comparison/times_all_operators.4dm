// Times compare by their seconds.
ALERT(Choose(?00:00:59?<?00:01:00?;"yes";"no"))  // expect: yes
ALERT(Choose(?01:00:00?>?00:59:59?;"yes";"no"))  // expect: yes
ALERT(Choose(?00:01:00?<=?00:01:00?;"yes";"no"))  // expect: yes
ALERT(Choose(?00:01:00?>=?00:01:01?;"yes";"no"))  // expect: no
ALERT(Choose(?12:30:00?=?12:30:00?;"yes";"no"))  // expect: yes
ALERT(Choose(?12:30:00?#?12:30:00?;"yes";"no"))  // expect: no
