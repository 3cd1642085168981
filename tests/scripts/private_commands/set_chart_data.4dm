// _Set Chart Data takes a number and three variables without a value, and gives 0 where nobody answers.
ARRAY LONGINT($a;1)
ARRAY LONGINT($b;1)
ARRAY TEXT($c;1)
ALERT(String(_Set Chart Data(1;$a;$b;$c)))  // expect: 0
