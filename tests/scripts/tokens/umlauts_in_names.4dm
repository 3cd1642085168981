// The German umlauts and the sharp s belong to a name.
Größe:=5
Ähre:=6
ALERT(String(Größe+Ähre))  // expect: 11
