// Required: a text behind a time does nothing.
ALERT(Choose((?00:01:00?+"a")=?00:01:00?;"yes";"no"))  // expect: yes
