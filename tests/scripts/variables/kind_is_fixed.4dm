// The kind of a variable never changes.
x:=1.5
x:="a"  // error: -10 Variable "x" has incorrect type!
