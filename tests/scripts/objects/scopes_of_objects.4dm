// Objects live in every scope.
vo:=New object
<>vo:=New object
vo.name:="process"
<>vo.name:="interprocess"
ALERT(vo.name)  // expect: process
ALERT(<>vo.name)  // expect: interprocess
