// A parameter that was not passed is an unknown variable.
show_second("one")  // expect: one
