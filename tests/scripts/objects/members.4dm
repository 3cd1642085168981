// Members of an object are set and read by name.
$o:=New object
$o.number:=5
$o.text:="abc"
$o.flag:=True
ALERT(String($o.number))  // expect: 5
ALERT($o.text)  // expect: abc
ALERT(Choose($o.flag;"true";"false"))  // expect: true
$o.number:=$o.number+1
ALERT(String($o.number*2))  // expect: 12
