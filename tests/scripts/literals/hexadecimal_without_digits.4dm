// Required: a hexadecimal literal without digits leaves what follows it.
Z:=9
ALERT(String(0xZ))  // expect: 9
