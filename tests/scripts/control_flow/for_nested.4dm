// A For inside a For starts anew at every pass.
For ($i;1;2)
  For ($j;1;2)
    ALERT(String($i*10+$j))
  End For
End For
// expect: 11
// expect: 12
// expect: 21
// expect: 22
