// A While whose condition is false at once runs no pass.
While (1=2)
  ALERT("never")
End while
ALERT("end")  // expect: end
