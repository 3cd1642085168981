// The mathematical functions at points without doubt.
ALERT(String(Sin(0)))  // expect: 0
ALERT(String(Cos(0)))  // expect: 1
ALERT(String(Tan(0)))  // expect: 0
ALERT(String(Arctan(0)))  // expect: 0
ALERT(String(Exp(0)))  // expect: 1
ALERT(String(Log(1)))  // expect: 0
