// Required: a Boolean behind a time does nothing.
$b:=(1=1)
ALERT(Choose((?00:01:00?+$b)=?00:01:00?;"yes";"no"))  // expect: yes
