// A pointer to a process variable lets a method change it.
vcount:=1
add_ten(->vcount)
ALERT(String(vcount))  // expect: 11
add_ten(->vcount)
ALERT(String(vcount))  // expect: 21
