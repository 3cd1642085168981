// Null empties a number, a Boolean and a time.
$n:=5
$n:=Null
ALERT(String($n))  // expect: 0
$b:=True
$b:=Null
ALERT(Choose($b;"true";"false"))  // expect: false
$t:=?00:00:05?
$t:=Null
ALERT(Choose($t=?00:00:00?;"zero";"set"))  // expect: zero
