// _Get 4D Variable Pointer points to a variable of the host.
vpointed:=5
_SET 4D VARIABLE("vpointed")
vpointed:=9
$p:=_Get 4D Variable Pointer("vpointed")
ALERT(String($p->))  // expect: 5
ALERT(String($p->+1))  // expect: 6
