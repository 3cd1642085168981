// A power wraps in unsigned 64 bits without an error.
ALERT(String(2^64))  // expect: 0
ALERT(String(2^65+7))  // expect: 7
