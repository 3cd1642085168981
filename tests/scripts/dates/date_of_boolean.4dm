// A date behind a Boolean does nothing.
$t:=(1=1)
ALERT(Choose($t+!2024-01-01!;"yes";"no"))  // expect: yes
