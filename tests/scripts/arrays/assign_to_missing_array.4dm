// An element of a variable that does not exist cannot be assigned.
va{1}:=1  // error: -11 Variable "va" not found!
