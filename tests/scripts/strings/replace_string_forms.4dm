// Replace string replaces all or some.
ALERT(Replace string("banana";"a";"o"))  // expect: bonono
ALERT(Replace string("banana";"a";"o";1))  // expect: bonana
ALERT(Replace string("banana";"an";""))  // expect: ba
ALERT(Replace string("aAa";"a";"x"))  // expect: xxx
ALERT(Replace string("aAa";"a";"x";*))  // expect: xAx
ALERT(Replace string("aAaa";"a";"x";2;*))  // expect: xAxa
