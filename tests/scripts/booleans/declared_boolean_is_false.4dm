// A declared Boolean starts as false.
C_BOOLEAN($b)
ALERT(Choose($b;"true";"false"))  // expect: false
