// Choose with a Boolean takes one of two values.
ALERT(Choose(True;"a";"b"))  // expect: a
ALERT(Choose(False;"a";"b"))  // expect: b
ALERT(String(Choose(1=1;5;6)))  // expect: 5
ALERT(String(Day of(Choose(False;!2024-01-01!;!2024-01-02!))))  // expect: 2
