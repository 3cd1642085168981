// INSERT IN ARRAY on a missing variable does nothing.
INSERT IN ARRAY(vx;1)
ALERT("end")  // expect: end
