// Required: True and False are commands, and without brackets the last one is the value.
ALERT(Choose(True | False;"yes";"no"))  // expect: no
ALERT(Choose(False & True;"yes";"no"))  // expect: yes
ALERT(Choose(True & False;"yes";"no"))  // expect: no
