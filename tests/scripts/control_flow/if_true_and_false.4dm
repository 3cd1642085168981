// An If runs its body when its condition is true.
$a:=1
If ($a=1)
  ALERT("one")  // expect: one
End If
If ($a=2)
  ALERT("two")
End If
ALERT("end")  // expect: end
