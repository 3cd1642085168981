// Brackets inside an index come first.
ARRAY LONGINT($a;5)
$a{(2*2)}:=7
ALERT(String($a{(1+1)*2}))  // expect: 7
ALERT(String($a{Length("abcd")}))  // expect: 7
