// The same name in three scopes is three variables.
x:="process"
$x:="local"
<>x:="interprocess"
ALERT(x)  // expect: process
ALERT($x)  // expect: local
ALERT(<>x)  // expect: interprocess
