// _Get Color reads the name of a colour and adds full opacity.
ALERT(Choose(_Get Color("White")=4294967295;"yes";"no"))  // expect: yes
ALERT(Choose(_Get Color("Black")=4278190080;"yes";"no"))  // expect: yes
ALERT(Choose(_Get Color("lime")=4278255360;"yes";"no"))  // expect: yes
ALERT(Choose(_Get Color("no such colour")=4278190080;"yes";"no"))  // expect: yes
ALERT(Choose(_Get Color("")=4278190080;"yes";"no"))  // expect: yes
