// Round and Trunc work on a number of decimals.
ALERT(String(Round(16.857;2)))  // expect: 16.86
ALERT(String(Round(32345.67;-3)))  // expect: 32000
ALERT(String(Round(2.4;0)))  // expect: 2
ALERT(String(Trunc(216.897;1)))  // expect: 216.8
ALERT(String(Trunc(216.897;-1)))  // expect: 210
