// Elements of integer and longint arrays hold whole numbers of 32 bits.
ARRAY LONGINT($l;2)
ARRAY INTEGER($i;2)
$l{1}:=3.9
$i{1}:=-3.9
$l{2}:=2147483648
$i{2}:=100000
ALERT(String($l{1}))  // expect: 3
ALERT(String($i{1}))  // expect: -3
ALERT(String($l{2}))  // expect: -2147483648
ALERT(String($i{2}))  // expect: 100000
