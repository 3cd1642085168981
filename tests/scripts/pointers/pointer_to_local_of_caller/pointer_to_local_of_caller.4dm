// Required: a pointer to a local reads and writes the local of that name in the frame that runs.
$x:=1
set_target(->$x)  // expect: 99
ALERT(String($x))  // expect: 1
