// Required: the last letter of a line is scanned again when it might have begun a hexadecimal literal.
x:=9
$y:=0x
ALERT(String($y))  // expect: 9
