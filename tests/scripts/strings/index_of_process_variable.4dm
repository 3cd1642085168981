// Characters of process and interprocess variables are read in the same way.
vs:="abc"
<>vs:="xyz"
ALERT(vs[[2]])  // expect: b
ALERT(<>vs[[3]])  // expect: z
