// A method may call itself.
ALERT(String(factorial_of(5)))  // expect: 120
ALERT(String(fibonacci_of(12)))  // expect: 144
ALERT(String(sum_to(50)))  // expect: 1275
