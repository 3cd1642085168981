// The body may move the loop variable.
For ($i;1;6)
  ALERT(String($i))
  $i:=$i+1
End For
// expect: 1
// expect: 3
// expect: 5
