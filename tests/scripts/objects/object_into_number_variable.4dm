// A number variable takes no object.
vn:=5
vn:=New object  // error: -10 Variable "vn" has incorrect type!
