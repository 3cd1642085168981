// A For whose start is its end runs one pass.
For ($i;7;7)
  ALERT(String($i))  // expect: 7
End For
For ($i;7;7;-1)
  ALERT(String($i))  // expect: 7
End For
