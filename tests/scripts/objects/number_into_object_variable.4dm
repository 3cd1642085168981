// An object variable takes no number.
vo:=New object
vo:=5  // error: -10 Variable "vo" has incorrect type!
