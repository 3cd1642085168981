// A variable made by a hexadecimal literal takes broken numbers.
$x:=0x10
$x:=$x+0.5
ALERT(String($x))  // expect: 16.5
