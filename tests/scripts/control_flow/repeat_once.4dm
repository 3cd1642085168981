// A Repeat runs its body at least once.
Repeat
  ALERT("once")  // expect: once
Until (1=1)
