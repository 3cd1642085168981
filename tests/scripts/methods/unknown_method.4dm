// A name that is no method is a variable.
nosuchmethod(5)  // error: -14 Unknown Variable "nosuchmethod"
