// A Repeat inside a Repeat.
$i:=0
Repeat
  $i:=$i+1
  $j:=0
  Repeat
    $j:=$j+1
    ALERT(String($i*10+$j))
  Until ($j=2)
Until ($i=2)
// expect: 11
// expect: 12
// expect: 21
// expect: 22
