// A Repeat runs its body until its condition holds.
$i:=0
Repeat
  $i:=$i+1
  ALERT(String($i))
Until ($i=3)
ALERT("end")
// expect: 1
// expect: 2
// expect: 3
// expect: end
