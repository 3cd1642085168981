// An End For inside another block does not find a For outside of it.
For ($i;1;2)
  If (1=1)
    ALERT("a")  // expect: a
    End For  // error: -17 For expected
