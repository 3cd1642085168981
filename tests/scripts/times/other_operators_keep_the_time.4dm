// Required: an operator that times do not have leaves the time as it is.
ALERT(Choose((?00:00:10?%?00:00:03?)=?00:00:10?;"yes";"no"))  // expect: yes
ALERT(Choose((?00:00:10?^?00:00:03?)=?00:00:10?;"yes";"no"))  // expect: yes
