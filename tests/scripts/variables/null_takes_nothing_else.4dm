// A variable made by Null takes nothing but Null.
x:=Null
x:=Null
x:=5  // error: -10 Variable "x" has incorrect type!
