// A declaration takes any number of variables of any scope.
C_LONGINT($a;$b;c;<>d)
ALERT(String($a+$b+c+<>d))  // expect: 0
$b:=2.5
c:=3.5
<>d:=4.5
ALERT(String($a+$b+c+<>d))  // expect: 9
