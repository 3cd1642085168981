// The loop variable may be of any scope.
For (vi;1;2)
  ALERT(String(vi))
End For
For (<>vi;8;9)
  ALERT(String(<>vi))
End For
// expect: 1
// expect: 2
// expect: 8
// expect: 9
