// A declared time starts at midnight.
C_TIME($t)
ALERT(Choose($t=?00:00:00?;"yes";"no"))  // expect: yes
$t:=?00:00:05?
ALERT(Choose($t=?00:00:05?;"yes";"no"))  // expect: yes
