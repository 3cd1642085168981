// Times multiply and divide by their seconds, and the quotient is truncated.
ALERT(Choose(?00:00:10?*?00:00:06?=?00:01:00?;"yes";"no"))  // expect: yes
ALERT(Choose(?00:00:10?/?00:00:03?=?00:00:03?;"yes";"no"))  // expect: yes
ALERT(Choose(?00:01:00?/?00:00:02?*?00:00:02?=?00:01:00?;"yes";"no"))  // expect: yes
