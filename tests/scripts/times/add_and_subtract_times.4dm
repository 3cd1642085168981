// Times add and subtract in seconds.
ALERT(Choose(?00:01:00?+?00:00:30?=?00:01:30?;"yes";"no"))  // expect: yes
ALERT(Choose(?00:01:00?-?00:00:30?=?00:00:30?;"yes";"no"))  // expect: yes
ALERT(Choose(?00:00:59?+?00:00:01?=?00:01:00?;"yes";"no"))  // expect: yes
