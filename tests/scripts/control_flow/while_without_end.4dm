// A While whose condition is false needs its end.
While (1=2)  // error: -19 End While expected
ALERT("never")
