// Date reads a date from a text.
ALERT(Choose(Date("2024-02-29")=!2024-02-29!;"yes";"no"))  // expect: yes
