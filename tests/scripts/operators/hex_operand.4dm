// A hexadecimal literal takes part in arithmetic.
ALERT(String(0x10+1))  // expect: 17
ALERT(String(0xFF*2))  // expect: 510
ALERT(String(1+0xA))  // expect: 11
