// Start, end and step are expressions.
$s:="abcd"
For ($i;Length($s)-2;Length($s)*2;1+1)
  ALERT(String($i))
End For
// expect: 2
// expect: 4
// expect: 6
// expect: 8
