// True and False in brackets of their own are values that fold.
ALERT(Choose((True) | (False);"yes";"no"))  // expect: yes
ALERT(Choose((True) & (False);"yes";"no"))  // expect: no
ALERT(Choose((False) | (True);"yes";"no"))  // expect: yes
