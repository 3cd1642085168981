// A member serves as parameter of a command.
$o:=New object
$o.s:="abc"
ALERT(Uppercase($o.s))  // expect: ABC
ALERT(String(Length($o.s)))  // expect: 3
