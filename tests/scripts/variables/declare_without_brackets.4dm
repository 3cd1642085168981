// A declaration without parameters does nothing.
C_LONGINT
ALERT("end")  // expect: end
