// Required: a method holds a hexadecimal literal in 32 bits with a sign, so one above 0x7FFFFFFF is negative.
ALERT(String(0xFFFFFFFF))  // expect: -1
ALERT(String(0x80000000))  // expect: -2147483648
