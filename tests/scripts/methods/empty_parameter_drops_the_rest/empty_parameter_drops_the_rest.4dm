// Required: an empty parameter drops all that follow it.
show_first("one";;"three")  // expect: one
show_first(;"two")
