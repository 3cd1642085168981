// A While inside a While.
$i:=0
While ($i<2)
  $j:=0
  While ($j<2)
    ALERT(String($i*10+$j))
    $j:=$j+1
  End while
  $i:=$i+1
End while
// expect: 0
// expect: 1
// expect: 10
// expect: 11
