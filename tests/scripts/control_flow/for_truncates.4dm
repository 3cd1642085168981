// The end and the step of a For are truncated, and a longint variable truncates the start.
For ($i;1.9;3.9;1.9)
  ALERT(String($i))
End For
// expect: 1
// expect: 2
// expect: 3
