// Methods may call each other.
ALERT(Choose(is_even(10);"even";"odd"))  // expect: even
ALERT(Choose(is_even(7);"even";"odd"))  // expect: odd
