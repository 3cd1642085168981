// Required: most accented letters do not belong to a name.
café:=7
ALERT(String(caf))  // expect: 7
