// Int rounds down, and Dec is what is left.
ALERT(String(Int(3.7)))  // expect: 3
ALERT(String(Int(-3.2)))  // expect: -4
ALERT(String(Dec(3.25)))  // expect: 0.25
ALERT(String(Dec(5)))  // expect: 0
