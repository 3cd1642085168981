// Choose with a number counts its values from 0.
ALERT(Choose(0;"a";"b";"c"))  // expect: a
ALERT(Choose(1;"a";"b";"c"))  // expect: b
ALERT(Choose(2;"a";"b";"c"))  // expect: c
ALERT(Choose(0;"only"))  // expect: only
ALERT(String(Choose(1;10;20)))  // expect: 20
