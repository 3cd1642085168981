// Time reads a time from a text, and Time string writes one.
ALERT(Choose(Time("12:30:00")=?12:30:00?;"yes";"no"))  // expect: yes
ALERT(Time string(3661))  // expect: 01:01:01
ALERT(Time string(?02:03:04?))  // expect: 02:03:04
