// Hexadecimal literals have up to eight digits of either case.
ALERT(String(0xFF))  // expect: 255
ALERT(String(0xff))  // expect: 255
ALERT(String(0x0))  // expect: 0
ALERT(String(0x00000010))  // expect: 16
ALERT(String(0x7FFFFFFF))  // expect: 2147483647
