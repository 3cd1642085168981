// The step of a For is evaluated again at every pass.
$step:=1
For ($i;1;10;$step)
  ALERT(String($i))
  $step:=$step+1
End For
// expect: 1
// expect: 3
// expect: 6
// expect: 10
