// The end of a For is evaluated again at every pass.
$n:=5
For ($i;1;$n)
  ALERT(String($i))
  If ($i=2)
    $n:=3
  End If
End For
// expect: 1
// expect: 2
// expect: 3
