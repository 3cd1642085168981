// An Until whose condition is false needs its Repeat, one that is true does not.
Until (1=1)
ALERT("a")  // expect: a
Until (1=2)  // error: -18 Repeat expected
