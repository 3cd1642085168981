// ALERT takes two parameters at most.
ALERT("a";"b";"c")  // error: -13 Command "ALERT" wrong count of parameters
