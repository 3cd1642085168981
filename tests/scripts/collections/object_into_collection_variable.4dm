// A collection variable takes no object.
C_COLLECTION(vc)
vc:=New object  // error: -10 Variable "vc" has incorrect type!
