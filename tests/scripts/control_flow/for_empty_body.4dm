// A For may have no body.
For ($i;1;100)
End For
ALERT(String($i))  // expect: 101
