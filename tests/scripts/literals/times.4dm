// Times stand between question marks.
$t:=?12:30:00?
ALERT(Choose($t-?12:00:00?=?00:30:00?;"yes";"no"))  // expect: yes
