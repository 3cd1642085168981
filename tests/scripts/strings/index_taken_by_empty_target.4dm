// Required: a text built character by character needs brackets, for the index belongs to the first variable.
vr:=""
vs:="abc"
vr:=vr+(vs[[1]])
ALERT(vr)  // expect: a
vr:=""
vr:=vr+vs[[1]]  // error: -36 String access "vr" not possible. Index: 1 String size: 0
