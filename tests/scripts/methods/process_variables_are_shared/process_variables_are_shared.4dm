// Process and interprocess variables are seen by every method.
vshared:="before"
<>vshared:="before"
change_shared(0)
ALERT(vshared)  // expect: changed
ALERT(<>vshared)  // expect: changed as well
