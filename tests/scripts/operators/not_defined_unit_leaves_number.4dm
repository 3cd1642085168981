// Required: a number behind a comma only continues the sum, for the comma is no token.
ALERT(String(1,5))  // expect: 6
ALERT(String(2*3,4))  // expect: 24
