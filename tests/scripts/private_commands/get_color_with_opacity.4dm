// _Get Color takes an opacity from 0 to 1.
ALERT(Choose(_Get Color("White";0)=16777215;"yes";"no"))  // expect: yes
ALERT(Choose(_Get Color("Black";1)=4278190080;"yes";"no"))  // expect: yes
ALERT(Choose(_Get Color("Black";0)=0;"yes";"no"))  // expect: yes
