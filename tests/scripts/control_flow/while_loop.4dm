// A While runs its body as long as its condition holds.
$i:=0
While ($i<3)
  $i:=$i+1
  ALERT(String($i))
End while
ALERT("end")
// expect: 1
// expect: 2
// expect: 3
// expect: end
