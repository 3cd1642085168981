// Choose evaluates all its values.
ALERT(Choose(1=1;say_one("a");say_one("b")))
// expect: a
// expect: b
// expect: a
