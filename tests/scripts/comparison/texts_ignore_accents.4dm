// Texts compare without regard to accents.
ALERT(Choose("élan"="elan";"yes";"no"))  // expect: yes
ALERT(Choose("Über"="uber";"yes";"no"))  // expect: yes
