// Required: any operator but plus and minus between dates gives the second date.
ALERT(Choose((!2024-01-01!*!2023-05-06!)=!2023-05-06!;"yes";"no"))  // expect: yes
ALERT(Choose((!2024-01-01!/!2023-05-06!)=!2023-05-06!;"yes";"no"))  // expect: yes
