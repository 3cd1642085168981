// A method takes its parameters as $1, $2 and gives back $0.
ALERT(String(take_from(10;3)))  // expect: 7
$x:=take_from(take_from(10;3);2)
ALERT(String($x))  // expect: 5
ALERT(String(100+take_from(10;3)))  // expect: 107
