// Names tell other letters apart by case.
grÖße:=1
größe:=2
ALERT(String(grÖße))  // expect: 1
ALERT(String(GRößE))  // expect: 2
