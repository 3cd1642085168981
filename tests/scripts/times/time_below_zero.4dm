// A time may be negative.
$t:=?00:00:10?-?00:00:30?
ALERT(Choose($t<?00:00:00?;"yes";"no"))  // expect: yes
ALERT(Choose($t+?00:00:20?=?00:00:00?;"yes";"no"))  // expect: yes
ALERT(Choose((-?00:00:10?)+?00:00:10?=?00:00:00?;"yes";"no"))  // expect: yes
