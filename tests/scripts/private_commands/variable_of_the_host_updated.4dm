// A variable that the host has already is overwritten.
vtext:="first"
_SET 4D VARIABLE("vtext")
vtext:="second"
_SET 4D VARIABLE("vtext")
vtext:="third"
_GET 4D VARIABLE("vtext")
ALERT(vtext)  // expect: second
